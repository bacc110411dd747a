#pragma once

#include "PeerLibrary.h"
#include "Workload.h"

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace bench {

/// The layers of a workload in one library: an object for each, asked in the order of the layers.
class PeerChain {
public:
    /// Leaves the files of the layers in the folder.
    static void write(const PeerLibrary& library, const Workload& workload, const std::filesystem::path& folder);

    /// Opens the files of so many layers.
    PeerChain(const PeerLibrary& library, std::size_t layers, const std::filesystem::path& folder);

    /// Compares every answer with that of the workload.
    void check(const Workload& workload);

    std::string read(const std::wstring& key);

    /// The first object that has the key.
    Peer& holderOf(const std::wstring& key);

    /// The key as the peers know it; valid until the next call.
    const std::string& fold(const std::wstring& key);

private:
    std::vector<std::unique_ptr<Peer>> peers;
    std::string folded;
};

} // namespace bench
