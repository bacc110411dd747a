#include "FileReader.h"

#include "FileHandle.h"

#include <cerrno>

namespace zel::storage {

namespace {

constexpr ReadOutcome tooLong{ReadResult::Unreadable, "longer than allowed", true};

ReadOutcome outcomeOf(int error) {
    switch (error) {
    case ENOENT:
    case ENOTDIR:
        return {ReadResult::Absent, "absent"};
    case EACCES:
    case EPERM:
        return {ReadResult::Unreadable, "no access"};
    case ELOOP:
        return {ReadResult::Unreadable, "links in a circle"};
    default:
        return {ReadResult::Unreadable, "input error"};
    }
}

} // namespace

ReadOutcome readRegularFile(FileLayer& layer, const std::string& path, std::size_t limit, std::string& bytes) {
    FileLayer::Handle opened = -1;
    FileKind kind = FileKind::Other;
    std::uint64_t size = 0;
    if (const int error = layer.openForReading(path, opened, kind, size); error != 0) {
        return outcomeOf(error);
    }
    const FileHandle handle(layer, opened);
    if (kind != FileKind::Regular) {
        return {ReadResult::Unreadable, "not a regular file", true};
    }
    if (size > limit) {
        return tooLong;
    }
    // One byte more than expected detects a file that grows during the read.
    bytes.resize(static_cast<std::size_t>(size) + 1);
    std::size_t filled = 0;
    for (;;) {
        std::size_t count = 0;
        if (const int error = layer.read(handle.get(), bytes.data() + filled, bytes.size() - filled, count);
            error != 0) {
            return outcomeOf(error);
        }
        if (count == 0) {
            break;
        }
        filled += count;
        if (filled > limit) {
            return tooLong;
        }
        if (filled == bytes.size()) {
            bytes.resize(filled * 2);
        }
    }
    bytes.resize(filled);
    return {};
}

} // namespace zel::storage
