#pragma once

#include "PeerLibrary.h"
#include "Workload.h"

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace bench {

/// The layers of a workload in one library: one object per layer, searched in order.
class PeerChain {
public:
    /// Writes the files of the layers to the folder.
    static void write(const PeerLibrary& library, const Workload& workload, const std::filesystem::path& folder);

    /// Opens the files of the first `layers` layers.
    PeerChain(const PeerLibrary& library, std::size_t layers, const std::filesystem::path& folder);

    /// Compares every answer with that of the workload.
    void check(const Workload& workload);

    std::string read(const std::wstring& key);

    /// Returns the first object that contains the key.
    Peer& holderOf(const std::wstring& key);

    /// Returns the key in lower case, valid until the next call.
    const std::string& fold(const std::wstring& key);

private:
    std::vector<std::unique_ptr<Peer>> peers;
    std::string folded;
};

} // namespace bench
