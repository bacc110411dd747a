#include "ProfileSnapshot.h"

#include "FileFacts.h"

namespace program_test {

namespace fs = std::filesystem;

ProfileSnapshot takeSnapshot(const fs::path& folder) {
    ProfileSnapshot snapshot{{folder.string(), describeFile(folder)}};
    std::error_code ignored;
    for (const auto& entry : fs::recursive_directory_iterator(folder, ignored)) {
        snapshot[entry.path().string()] = describeFile(entry.path());
    }
    return snapshot;
}

} // namespace program_test
