#pragma once

#include "PendingWrites.h"
#include "ProtectedFiles.h"

#include <string>
#include <vector>

namespace zel::storage {

/// The protected files at and below one configuration directory: files with one of the client's own names, files with
/// the header of the format, and files moved aside. Ignores the files of other programs.
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
    bool hasClientsName(const std::string& path) const;

    ProtectedFiles& files;
    const std::string directory;
};

} // namespace zel::storage
