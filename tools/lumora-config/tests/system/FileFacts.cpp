#include "FileFacts.h"

#include <TemporaryProfile.h>
#include <sys/stat.h>

#include <sstream>

namespace program_test {

namespace fs = std::filesystem;

std::string describeFile(const fs::path& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0) {
        return "absent";
    }
    std::ostringstream facts;
    facts << "mode " << std::oct << status.st_mode << std::dec << ", owner " << status.st_uid << ", inode "
          << status.st_ino << ", size " << status.st_size << ", content changed " << status.st_mtim.tv_sec << '.'
          << status.st_mtim.tv_nsec << ", inode changed " << status.st_ctim.tv_sec << '.' << status.st_ctim.tv_nsec;
    if (S_ISREG(status.st_mode)) {
        facts << ", content " << testing_host::readFile(path);
    } else if (S_ISLNK(status.st_mode)) {
        facts << ", target " << fs::read_symlink(path).string();
    }
    return facts.str();
}

} // namespace program_test
