#pragma once

#include <kyr/AnnotatedMutex.h>
#include <zel/StorageHealth.h>

#include <string>
#include <vector>

namespace zel::storage {

/// The files that this process moved aside, in chronological order. Any thread; no other lock is acquired under its
/// mutex.
class MovedFiles {
public:
    void add(MovedFile file);
    /// Returns the files at and below `directory`.
    std::vector<MovedFile> list(const std::string& directory) const;
    void clear();

private:
    mutable KyrCoreUtils::AnnotatedMutex<> mutex;
    std::vector<MovedFile> files LUMORA_GUARDED_BY(mutex);
};

} // namespace zel::storage
