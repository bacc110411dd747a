#include "ProfileDirectoryLock.h"

#include <system_error>

namespace zel::platform {

namespace {

std::string describe(int error) {
    return std::error_code(error, std::generic_category()).message();
}

} // namespace

ProfileDirectoryLock::Problem ProfileDirectoryLock::makeOpenFailure(const std::string& path, int error) {
    return {"The configuration directory " + path + " can't be opened: " + describe(error), false};
}

void ProfileDirectoryLock::recordLockFailure(int error) {
    problem = "The configuration directory " + path + " can't be locked: " + describe(error);
}

void ProfileDirectoryLock::recordUse(long otherProcess) {
    holder = otherProcess;
    problem = makeUse(path, holder).text;
}

ProfileDirectoryLock::Problem ProfileDirectoryLock::makeUse(const std::string& path, long holder) {
    return {"The profile " + path + " is in use by " +
                (holder != 0 ? "process " + std::to_string(holder) : std::string("another process")) + ".",
            true};
}

} // namespace zel::platform
