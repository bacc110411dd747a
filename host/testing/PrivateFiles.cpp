#include "PrivateFiles.h"

namespace testing_host {

using std::filesystem::perm_options;
using std::filesystem::perms;

namespace {

perms ownersModeOf(const std::filesystem::path& path) {
    return std::filesystem::is_directory(path) ? perms::owner_all : perms::owner_read | perms::owner_write;
}

} // namespace

bool isPrivate(const std::filesystem::path& path) {
    return std::filesystem::status(path).permissions() == ownersModeOf(path);
}

void letEverybodyRead(const std::filesystem::path& path) {
    std::filesystem::permissions(path, perms::others_read, perm_options::add);
}

void letEverybodyWrite(const std::filesystem::path& path) {
    std::filesystem::permissions(path, perms::others_read | perms::others_write, perm_options::add);
}

void makePrivate(const std::filesystem::path& path) {
    std::filesystem::permissions(path, ownersModeOf(path));
}

} // namespace testing_host
