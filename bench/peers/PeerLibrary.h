#pragma once

#include "Peer.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace bench {

/// Keys in lower case with their values.
using PeerLayer = std::vector<std::pair<std::string, std::string>>;

/// Describes how one library writes and opens its files, and which operations it supports.
struct PeerLibrary {
    std::string name;
    /// Writes the layer to a file in the library's own format in the folder.
    std::function<void(const PeerLayer& layer, const std::filesystem::path& folder)> write;
    /// Opens the file that `write` created.
    std::function<std::unique_ptr<Peer>(const std::filesystem::path& folder)> open;
    bool setsInMemory = true; ///< Whether a value can be set without writing the file at once.
    bool persists = true;
};

PeerLibrary boostTree();
PeerLibrary glibKeyFile();
/// The values are the defaults of a compiled schema; changes stay in memory.
PeerLibrary glibSettings();
/// The values are in a key file, which every change writes.
PeerLibrary glibSettingsOnFile();
PeerLibrary kdeConfig();
PeerLibrary libConfig();
PeerLibrary qtSettings();

} // namespace bench
