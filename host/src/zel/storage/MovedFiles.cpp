#include "MovedFiles.h"

#include "PathParts.h"

#include <utility>

namespace zel::storage {

void MovedFiles::add(MovedFile file) {
    const std::lock_guard lock(mutex);
    files.push_back(std::move(file));
}

std::vector<MovedFile> MovedFiles::list(const std::string& directory) const {
    const std::string prefix = directoryPrefix(directory);
    std::vector<MovedFile> found;
    const std::lock_guard lock(mutex);
    for (const auto& file : files) {
        if (spellPath(file.original).starts_with(prefix)) {
            found.push_back(file);
        }
    }
    return found;
}

void MovedFiles::clear() {
    const std::lock_guard lock(mutex);
    files.clear();
}

} // namespace zel::storage
