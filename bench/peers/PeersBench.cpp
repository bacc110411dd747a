// The rows of reads and of chains with what else a program on this system would keep its settings in: one object of the
// peer for each layer, asked in the order of the layers. The probe is folded for them, as most of them tell cases
// apart.
#include "BareTable.h"
#include "Peer.h"
#include "ProbeWalk.h"

#include <kyr/StringUtils.h>

#include <TemporaryProfile.h>

#include <array>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

using bench::Peer;

std::string toFolded(const std::wstring& key) {
    return KyrCoreUtils::toString(KyrCoreUtils::toLowercase(std::wstring_view(key)));
}

/// The layers of a workload in one library.
class PeerChain {
public:
    PeerChain(const bench::Workload& workload, const bench::MakePeer& make, const std::filesystem::path& folder) {
        for (const auto& values : workload.getLayers()) {
            bench::Layer layer;
            for (const auto& [key, value] : values) {
                layer.emplace_back(toFolded(key), KyrCoreUtils::toString(value));
            }
            const auto place = folder / std::to_string(peers.size());
            std::filesystem::create_directories(place);
            peers.push_back(make(layer, place));
        }
        for (const auto& [key, value] : workload.getHits()) {
            bench::require(read(key) == KyrCoreUtils::toString(value), "a peer");
        }
        for (const auto& probe : workload.getMisses()) {
            bench::require(read(probe.key).empty(), "a peer's miss");
        }
    }

    std::string read(const std::wstring& key) {
        folded.resize(key.size());
        for (std::size_t i = 0; i < key.size(); ++i) {
            const auto letter = static_cast<char>(key[i]);
            folded[i] = letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + ('a' - 'A')) : letter;
        }
        for (const auto& peer : peers) {
            if (auto value = peer->read(folded)) {
                return *std::move(value);
            }
        }
        return {};
    }

private:
    std::vector<std::unique_ptr<Peer>> peers;
    std::string folded;
};

class BareChain {
public:
    explicit BareChain(const bench::Workload& workload) {
        for (const auto& layer : workload.getLayers()) {
            auto& table = tables.emplace_back();
            for (const auto& [key, value] : layer) {
                table.emplace(folder(key).folded, value);
            }
        }
    }

    std::wstring read(const std::wstring& key) {
        const auto probe = folder(key);
        for (const auto& table : tables) {
            if (const auto found = table.find(probe); found != table.end()) {
                return found->second;
            }
        }
        return {};
    }

private:
    std::vector<bench::BareTable> tables;
    bench::Folder folder;
};

template <class Chain>
void addRows(bench::RowSuite& suite, const bench::Workload& workload, const std::string& subject,
             const std::shared_ptr<Chain>& chain) {
    const auto ask = [chain](const std::wstring& key) { return chain->read(key); };
    if (workload.getLayers().size() == 1) {
        suite.add("1 cached read, all of 5000 keys", subject, bench::walkOver(workload.getHits(), ask));
        suite.add("1 cached read, 64 hot of 5000 keys", subject, bench::walkOver(workload.getHotHits(), ask));
        return;
    }
    suite.add("2 chain, all of 8 layers of 5000 keys", subject, bench::walkOver(workload.getHits(), ask));
    suite.add("2 chain, 64 hot of 8 layers of 5000 keys", subject, bench::walkOver(workload.getHotHits(), ask));
    suite.add("2 chain, none of 8 layers of 5000 keys", subject, bench::walkOver(workload.getMisses(), ask));
}

} // namespace

int main(int argc, char** argv) {
    const testing_host::TemporaryProfile profile;
    bench::RowSuite suite(argc, argv);
    const std::array<std::pair<std::string, bench::MakePeer>, 6> makers{{{"QSettings", bench::makeQtSettings},
                                                                         {"KConfig", bench::makeKdeConfig},
                                                                         {"GKeyFile", bench::makeGlibKeyFile},
                                                                         {"GSettings", bench::makeGlibSettings},
                                                                         {"Boost.PropertyTree", bench::makeBoostTree},
                                                                         {"libconfig++", bench::makeLibConfig}}};
    const bench::Workload one(1, 5000);
    const bench::Workload eight(8, 5000);
    for (const auto* workload : {&one, &eight}) {
        for (const auto& [name, make] : makers) {
            const auto folder = profile.root() / name / std::to_string(workload->getLayers().size());
            addRows(suite, *workload, name, std::make_shared<PeerChain>(*workload, make, folder));
        }
        addRows(suite, *workload, "bare maps", std::make_shared<BareChain>(*workload));
    }
    return suite.main();
}
