#pragma once

#include "PendingWrites.h"
#include "ProtectedFiles.h"

#include <string>
#include <vector>

namespace zel::storage {

/// The protected files at and below one directory: the files that end in ".dat", and those moved aside.
class ProtectedFileTree {
public:
    /// `access` must outlive the tree.
    ProtectedFileTree(ProtectedFiles& access, std::string root);

    /// Checks the files on the disk and adds the records of `writes`, sorted by path.
    std::vector<ProtectedFileHealth> examine(const PendingWrites& writes) const;
    void moveAsideUnusable() const;
    std::vector<KeptFile> listMovedAside() const;

private:
    std::vector<std::string> listFiles() const;

    ProtectedFiles& files;
    const std::string directory;
};

} // namespace zel::storage
