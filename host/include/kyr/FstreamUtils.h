#pragma once

#include <zel/HostExport.h>

#include <fstream>
#include <string>

namespace KyrCoreUtils {

/// Numbers of our own: the standard library's differ between platforms, so a number never reaches it.
enum class StreamMode : unsigned int { Read = 1, Write = 2 };

/// Opens streams by paths in UTF-8. Nothing throws but a failed allocation. Any thread.
class LUMORA_HOST_API FstreamUtils {
public:
    /// Opens a regular file in binary mode; Write truncates. On failure the stream is left closed with its failbit set:
    /// a directory or an unreadable file counts as a failure.
    static bool open(std::fstream& stream, const std::string& path, StreamMode mode);
};

} // namespace KyrCoreUtils
