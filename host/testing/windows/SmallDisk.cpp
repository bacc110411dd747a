#include "SmallDisk.h"

namespace testing_host {

SmallDisk::SmallDisk(const std::filesystem::path& /*folder*/, std::size_t /*bytes*/)
    : obstacle("a process of this platform has no mounts of its own") {}

SmallDisk::~SmallDisk() = default;

void SmallDisk::fill() {}

void SmallDisk::empty() {}

bool SmallDisk::setReadOnly(bool /*readOnly*/) {
    return false;
}

} // namespace testing_host
