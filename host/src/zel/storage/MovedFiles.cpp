#include "MovedFiles.h"

#include "PathParts.h"

#include <kyr/LockGuard.h>

#include <utility>

namespace zel::storage {

void MovedFiles::add(MovedFile file) {
    const KyrCoreUtils::LockGuard lock(mutex);
    files.push_back(std::move(file));
}

std::vector<MovedFile> MovedFiles::list(const std::string& directory) const {
    const std::string prefix = directoryPrefix(directory);
    std::vector<MovedFile> found;
    const KyrCoreUtils::LockGuard lock(mutex);
    for (const auto& file : files) {
        if (spellPath(file.original).starts_with(prefix)) {
            found.push_back(file);
        }
    }
    return found;
}

void MovedFiles::clear() {
    const KyrCoreUtils::LockGuard lock(mutex);
    files.clear();
}

} // namespace zel::storage
