// For platforms whose files have neither numbers nor modes.
#include "FileFacts.h"

#include <TemporaryProfile.h>

#include <sstream>

namespace program_test {

namespace fs = std::filesystem;

std::string describeFile(const fs::path& path) {
    std::error_code error;
    const auto status = fs::symlink_status(path, error);
    if (!fs::exists(status)) {
        return "absent";
    }
    std::ostringstream facts;
    facts << "type " << static_cast<int>(status.type()) << ", permissions "
          << static_cast<unsigned>(status.permissions()) << ", changed "
          << fs::last_write_time(path, error).time_since_epoch().count();
    if (fs::is_regular_file(status)) {
        facts << ", content " << testing_host::readFile(path);
    }
    return facts.str();
}

} // namespace program_test
