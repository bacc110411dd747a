#include "PathText.h"
#include "zel/storage/InMemoryFileLayer.h"

#include <kyr/FstreamUtils.h>

#include <filesystem>

namespace KyrCoreUtils {

namespace {

/// Returns true if `path` may be opened. Opening a pipe would block; a directory opens but cannot be read.
bool isOpenable(const std::filesystem::path& path, StreamMode mode) {
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    return std::filesystem::is_regular_file(status) ||
           (mode == StreamMode::Write && !std::filesystem::exists(status) && std::filesystem::status_known(status));
}

/// Returns true if the disk contains what the process sees at `path`. A stream cannot read or change content in memory.
bool isOnDisk(const std::string& path, StreamMode mode) {
    const auto inMemory = zel::storage::InMemoryFileLayer::getActive();
    return !inMemory || (mode == StreamMode::Read && !inMemory->isChanged(path));
}

} // namespace

bool FstreamUtils::open(std::fstream& stream, const std::string& path, StreamMode mode) {
    if (stream.is_open()) {
        stream.close();
    }
    stream.clear();
    const auto file = pathFromText(path);
    if ((mode != StreamMode::Read && mode != StreamMode::Write) || !file || !isOnDisk(path, mode) ||
        !isOpenable(*file, mode)) {
        stream.setstate(std::ios::failbit);
        return false;
    }
    stream.open(*file, std::ios::binary | (mode == StreamMode::Read ? std::ios::in : std::ios::out | std::ios::trunc));
    return stream.is_open();
}

} // namespace KyrCoreUtils
