#pragma once

#include "PendingWrites.h"
#include "ProtectedFiles.h"

#include <string>
#include <vector>

namespace zel::storage {

/// The protected files at and below one configuration directory: those with a name that the client gives its protected
/// files, those with the header of the format, and those moved aside. Ignores the files of other programs.
class ProtectedFileTree {
public:
    /// `access` outlives the tree.
    ProtectedFileTree(ProtectedFiles& access, std::string root);

    /// Examines what is on the disk and adds what `writes` knows, sorted by path.
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
