#pragma once

#include <ConfigMap.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace bench {

/// One layer of keys in another library, read from the file that the library itself wrote. Keys are in lower case:
/// most of these libraries tell cases apart, so whoever asks folds the key first.
class Peer {
public:
    virtual ~Peer() = default;
    Peer() = default;
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    /// What the library hands out, as the client's own text; empty on a miss.
    virtual std::optional<std::string> read(const std::string& key) = 0;
};

using Layer = std::vector<std::pair<std::string, std::string>>;

/// Makes a peer of a layer, with its files in the folder.
using MakePeer = std::function<std::unique_ptr<Peer>(const Layer& layer, const std::filesystem::path& folder)>;

std::unique_ptr<Peer> makeBoostTree(const Layer& layer, const std::filesystem::path& folder);
std::unique_ptr<Peer> makeGlibKeyFile(const Layer& layer, const std::filesystem::path& folder);
std::unique_ptr<Peer> makeGlibSettings(const Layer& layer, const std::filesystem::path& folder);
std::unique_ptr<Peer> makeKdeConfig(const Layer& layer, const std::filesystem::path& folder);
std::unique_ptr<Peer> makeLibConfig(const Layer& layer, const std::filesystem::path& folder);
std::unique_ptr<Peer> makeQtSettings(const Layer& layer, const std::filesystem::path& folder);

} // namespace bench
