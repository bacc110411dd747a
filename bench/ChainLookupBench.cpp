// Compares a lookup through the whole chain with the same lookup in one hash map per layer.
#include "HostedService.h"
#include "ProbeWalk.h"
#include "bare/BareChain.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace {

using Probes = std::vector<bench::Probe>;

/// The chain and the tables with the same contents.
class Subjects {
public:
    Subjects(std::size_t layers, std::size_t keys)
        : workload(layers, keys), hosted(workload.getLayers(), bench::HostedService::Records::Without) {
        check(workload.getHits(), true);
        check(workload.getMisses(), false);
    }

    const bench::Workload& getWorkload() const { return workload; }

    std::wstring ask(const std::wstring& key) {
        std::wstring value;
        hosted.featureSet().getConfig(key, value, false);
        return value;
    }

    std::wstring askBare(const std::wstring& key) { return bare.read(key); }

private:
    void check(const Probes& probes, bool held) {
        for (const auto& [key, expected] : probes) {
            std::wstring value = L"left over";
            bench::require(hosted.featureSet().getConfig(key, value, false) == held && value == expected, "the chain");
            bench::require(askBare(key) == expected, "the tables");
        }
    }

    const bench::Workload workload;
    bench::HostedService hosted;
    bench::BareChain bare{workload};
};

void addRow(bench::RowSuite& suite, const std::string& name, const std::shared_ptr<Subjects>& subjects,
            const Probes& probes) {
    suite.add(name, "chain",
              bench::walkOver(probes, [subjects](const std::wstring& key) { return subjects->ask(key); }));
    suite.add(name, "bare maps",
              bench::walkOver(probes, [subjects](const std::wstring& key) { return subjects->askBare(key); }));
}

void addRows(bench::RowSuite& suite, std::size_t layers, std::size_t keys) {
    const auto subjects = std::make_shared<Subjects>(layers, keys);
    const auto of = " of " + std::to_string(layers) + " layers of " + std::to_string(keys) + " keys";
    addRow(suite, "2 chain, all" + of, subjects, subjects->getWorkload().getHits());
    addRow(suite, "2 chain, 64 hot" + of, subjects, subjects->getWorkload().getHotHits());
    addRow(suite, "2 chain, none" + of, subjects, subjects->getWorkload().getMisses());
}

} // namespace

int main(int argc, char** argv) {
    bench::RowSuite suite(argc, argv);
    if (!suite.measuresGrowth()) {
        addRows(suite, 8, 500);
        addRows(suite, 8, 5000);
        return suite.main();
    }
    for (const std::size_t keys : {1000U, 10000U, 100000U}) {
        addRows(suite, 8, keys);
    }
    for (const std::size_t layers : {2U, 8U, 32U}) {
        addRows(suite, layers, 5000);
    }
    return suite.main();
}
