#include <kyr/FileAccess.h>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <vector>

namespace KyrCoreUtils {

namespace {

constexpr uid_t root = 0;
constexpr std::size_t longestRecord = 16384;

FileAccess::Owner classify(uid_t owner) {
    if (owner == ::geteuid()) {
        return FileAccess::Owner::Self;
    }
    return owner == root ? FileAccess::Owner::Administrator : FileAccess::Owner::Other;
}

std::string nameOf(uid_t user) {
    std::vector<char> buffer(longestRecord);
    passwd record{};
    passwd* found = nullptr;
    const int error = ::getpwuid_r(user, &record, buffer.data(), buffer.size(), &found);
    return error == 0 && found != nullptr ? record.pw_name : std::to_string(user);
}

} // namespace

std::optional<FileAccess> FileAccess::read(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        return std::nullopt;
    }
    const auto mode = status.st_mode;
    return FileAccess{.owner = classify(status.st_uid),
                      .ownerName = nameOf(status.st_uid),
                      .writableByEverybody = (mode & S_IWOTH) != 0,
                      .writableByOthers = (mode & (S_IWGRP | S_IWOTH)) != 0,
                      .usableByOthers = (mode & (S_IRWXG | S_IRWXO)) != 0};
}

std::optional<unsigned> FileAccess::readMode(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? std::optional<unsigned>(status.st_mode & 07777U) : std::nullopt;
}

int FileAccess::restrictToOwner(const std::string& path) noexcept {
    return ::chmod(path.c_str(), S_IRUSR | S_IWUSR) == 0 ? 0 : errno;
}

} // namespace KyrCoreUtils
