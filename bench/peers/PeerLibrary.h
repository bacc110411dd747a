#pragma once

#include "Peer.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace bench {

/// Keys in lower case, and values.
using PeerLayer = std::vector<std::pair<std::string, std::string>>;

/// How one library comes to its files, and which of the work it can do.
struct PeerLibrary {
    std::string name;
    /// Leaves the layer in a file of the library's own in the folder.
    std::function<void(const PeerLayer& layer, const std::filesystem::path& folder)> write;
    /// Opens what `write` left there.
    std::function<std::unique_ptr<Peer>(const std::filesystem::path& folder)> open;
    bool setsInMemory = true; ///< Whether a value can be set without the file being written at once.
    bool persists = true;
};

PeerLibrary boostTree();
PeerLibrary glibKeyFile();
/// The values are the defaults of a compiled schema, what is set stays in memory.
PeerLibrary glibSettings();
/// The values lie in a key file, which every change writes.
PeerLibrary glibSettingsOnFile();
PeerLibrary kdeConfig();
PeerLibrary libConfig();
PeerLibrary qtSettings();

} // namespace bench
