#pragma once

#include <zel/EncryptFileUtils.h>
#include <zel/FileLayer.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace zel::storage {

/// The outcome of a read. The reason is for a log: a constant text without any content of the file.
struct ReadOutcome {
    ReadResult result = ReadResult::Ok;
    std::string_view reason;
    bool lasting = false; ///< True if the file cannot be a protected file, so a retry will fail, too.
};

/// Reads a regular file of at most `limit` bytes. Returns Ok, Absent or Unreadable; `bytes` is valid only if the result
/// is Ok.
ReadOutcome readRegularFile(FileLayer& layer, const std::string& path, std::size_t limit, std::string& bytes);

} // namespace zel::storage
