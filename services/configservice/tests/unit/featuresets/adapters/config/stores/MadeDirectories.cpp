#include "MadeDirectories.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace xml_test {

namespace {

thread_local std::vector<std::string>* noted = nullptr;

} // namespace

MadeDirectories::MadeDirectories() {
    noted = &paths;
}

MadeDirectories::~MadeDirectories() {
    noted = nullptr;
}

} // namespace xml_test

/// Replaces the system's function for the libraries too, and calls another one that does the work.
extern "C" [[gnu::visibility("default")]] int mkdir(const char* path, mode_t mode) noexcept {
    if (xml_test::noted != nullptr) {
        xml_test::noted->emplace_back(path);
    }
    return mkdirat(AT_FDCWD, path, mode);
}
