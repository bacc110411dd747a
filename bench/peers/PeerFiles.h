#pragma once

#include "PeerChain.h"

#include <filesystem>
#include <memory>

namespace bench {

/// The files of one library in a folder of their own: some libraries share what they hold of a file that is open twice.
/// Library and workload must outlive it.
class PeerFiles {
public:
    /// Has the library write them.
    PeerFiles(const PeerLibrary& peer, const Workload& written, const std::filesystem::path& place);

    const Workload& getWorkload() const { return workload; }

    std::shared_ptr<PeerChain> open() const;
    /// Compares every answer before it hands the chain out.
    std::shared_ptr<PeerChain> openChecked() const;
    /// Opens a copy of the files, of which the library can't remember anything. Can be done once.
    std::shared_ptr<PeerChain> openCopy() const;

private:
    std::shared_ptr<PeerChain> openIn(const std::filesystem::path& place) const;

    const PeerLibrary& library;
    const Workload& workload;
    const std::filesystem::path folder;
};

} // namespace bench
