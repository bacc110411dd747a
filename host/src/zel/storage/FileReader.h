#pragma once

#include <zel/EncryptFileUtils.h>
#include <zel/FileLayer.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace zel::storage {

/// How a reading ended. The reason is for a log: a constant text that says nothing of the content.
struct ReadOutcome {
    ReadResult result = ReadResult::Ok;
    std::string_view reason;
    bool lasting = false; ///< What stands there can't be a file of ours: asking again won't help.
};

/// Reads a regular file of at most `limit` bytes. Ok, Absent or Unreadable; `bytes` is of no meaning unless Ok.
ReadOutcome readRegularFile(FileLayer& layer, const std::string& path, std::size_t limit, std::string& bytes);

} // namespace zel::storage
