#pragma once

#include <zel/StorageHealth.h>

#include <mutex>
#include <string>
#include <vector>

namespace zel::storage {

/// The files that this process moved aside, in order. Any thread; its mutex is a leaf.
class MovedFiles {
public:
    void add(MovedFile file);
    /// Those at and below `directory`.
    std::vector<MovedFile> list(const std::string& directory) const;
    void clear();

private:
    mutable std::mutex mutex; ///< Guards `files`.
    std::vector<MovedFile> files;
};

} // namespace zel::storage
