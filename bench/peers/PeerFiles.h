#pragma once

#include "PeerChain.h"

#include <filesystem>
#include <memory>

namespace bench {

/// The files of one library in a folder of their own: some libraries share the state of a file that is opened twice.
/// Library and workload must outlive it.
class PeerFiles {
public:
    /// Lets the library write the files.
    PeerFiles(const PeerLibrary& peer, const Workload& written, const std::filesystem::path& place);

    const Workload& getWorkload() const { return workload; }

    std::shared_ptr<PeerChain> open() const;
    /// Opens the files, compares every answer, and returns the chain.
    std::shared_ptr<PeerChain> openChecked() const;
    /// Opens a copy of the files, which the library cannot have cached. Call once only.
    std::shared_ptr<PeerChain> openCopy() const;

private:
    std::shared_ptr<PeerChain> openIn(const std::filesystem::path& place) const;

    const PeerLibrary& library;
    const Workload& workload;
    const std::filesystem::path folder;
};

} // namespace bench
