#include "PeerChain.h"

#include "RowSuite.h"

#include <kyr/StringUtils.h>

#include <algorithm>
#include <utility>

namespace bench {

namespace {

std::filesystem::path placeOf(std::size_t layer, const std::filesystem::path& folder) {
    return folder / std::to_string(layer);
}

} // namespace

void PeerChain::write(const PeerLibrary& library, const Workload& workload, const std::filesystem::path& folder) {
    for (std::size_t i = 0; i < workload.getLayers().size(); ++i) {
        PeerLayer layer;
        for (const auto& [key, value] : workload.getLayers()[i]) {
            layer.emplace_back(KyrCoreUtils::toString(KyrCoreUtils::toLowercase(std::wstring_view(key))),
                               KyrCoreUtils::toString(value));
        }
        std::filesystem::create_directories(placeOf(i, folder));
        library.write(layer, placeOf(i, folder));
    }
}

PeerChain::PeerChain(const PeerLibrary& library, std::size_t layers, const std::filesystem::path& folder) {
    for (std::size_t i = 0; i < layers; ++i) {
        peers.push_back(library.open(placeOf(i, folder)));
    }
}

void PeerChain::check(const Workload& workload) {
    for (const auto& [key, value] : workload.getHits()) {
        require(read(key) == KyrCoreUtils::toString(value), "a peer");
    }
    for (const auto& probe : workload.getMisses()) {
        require(read(probe.key).empty(), "a peer's miss");
    }
}

std::string PeerChain::read(const std::wstring& key) {
    fold(key);
    for (const auto& peer : peers) {
        if (auto value = peer->read(folded)) {
            return *std::move(value);
        }
    }
    return {};
}

Peer& PeerChain::holderOf(const std::wstring& key) {
    fold(key);
    const auto holds = [this](const auto& peer) { return peer->read(folded).has_value(); };
    const auto holder = std::find_if(peers.begin(), peers.end(), holds);
    require(holder != peers.end(), "a key of the peers");
    return **holder;
}

const std::string& PeerChain::fold(const std::wstring& key) {
    folded.resize(key.size());
    for (std::size_t i = 0; i < key.size(); ++i) {
        const auto letter = static_cast<char>(key[i]);
        folded[i] = letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + ('a' - 'A')) : letter;
    }
    return folded;
}

} // namespace bench
