#include "ProfileDirectoryLock.h"

#include <system_error>

namespace ZelUnified {

namespace {

std::string describe(int error) {
    return std::error_code(error, std::generic_category()).message();
}

} // namespace

std::string ProfileDirectoryLock::describeOpenFailure(const std::string& path, int error) {
    return "The configuration directory " + path + " can't be opened: " + describe(error);
}

std::string ProfileDirectoryLock::describeLockFailure(const std::string& path, int error) {
    return "The configuration directory " + path + " can't be locked: " + describe(error);
}

std::string ProfileDirectoryLock::describeUse(const std::string& path, long holder) {
    return "The profile " + path + " is in use by " +
           (holder != 0 ? "process " + std::to_string(holder) : std::string("another process")) + ".";
}

} // namespace ZelUnified
