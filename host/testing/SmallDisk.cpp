#include "SmallDisk.h"

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>

namespace testing_host {

namespace {

constexpr const char* fillerName = "filler";

void writeLine(const char* path, const std::string& line) {
    std::ofstream(path) << line;
}

/// Creates a mount namespace for this process, once; without root also a user namespace in which the user is root.
/// Returns the reason of a failure.
std::string makeOwnView() {
    const auto user = geteuid();
    const auto group = getegid();
    const int kinds = user == 0 ? CLONE_NEWNS : CLONE_NEWNS | CLONE_NEWUSER;
    if (unshare(kinds) != 0) {
        return std::string("no view of its own: ") + std::strerror(errno);
    }
    if (user != 0) {
        writeLine("/proc/self/setgroups", "deny");
        writeLine("/proc/self/uid_map", "0 " + std::to_string(user) + " 1");
        writeLine("/proc/self/gid_map", "0 " + std::to_string(group) + " 1");
    }
    if (mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) {
        return std::string("the view is not its own: ") + std::strerror(errno);
    }
    return {};
}

} // namespace

SmallDisk::SmallDisk(const std::filesystem::path& folder, std::size_t bytes)
    : place(folder), options("size=" + std::to_string(bytes) + ",mode=0700") {
    static const std::string obstacleOfView = makeOwnView();
    obstacle = obstacleOfView;
    if (obstacle.empty() && mount("lumora-test", place.c_str(), "tmpfs", 0, options.c_str()) != 0) {
        obstacle = std::string("no mount: ") + std::strerror(errno);
    }
}

SmallDisk::~SmallDisk() {
    if (obstacle.empty()) {
        umount2(place.c_str(), MNT_DETACH);
    }
}

void SmallDisk::fill() {
    std::ofstream filler(place / fillerName, std::ios::binary);
    while (filler.put('x').flush()) {
    }
}

void SmallDisk::empty() {
    std::filesystem::remove(place / fillerName);
}

bool SmallDisk::setReadOnly(bool readOnly) {
    const unsigned long flags = MS_REMOUNT | (readOnly ? MS_RDONLY : 0);
    return mount("lumora-test", place.c_str(), "tmpfs", flags, options.c_str()) == 0;
}

} // namespace testing_host
