#pragma once

#include <zel/HostExport.h>

#include <fstream>
#include <string>

namespace KyrCoreUtils {

/// Defined here because the numbers of the standard library differ between platforms; these numbers are never passed to
/// it.
enum class StreamMode : unsigned int { Read = 1, Write = 2 };

/// Opens streams by UTF-8 paths. Throws only if an allocation fails. Any thread.
class LUMORA_HOST_API FstreamUtils {
public:
    /// Opens a regular file in binary mode; Write truncates it. On failure returns false and leaves the stream closed
    /// with its failbit set. A directory or an unreadable file is a failure, and if the host keeps its changes in
    /// memory (UnifiedFactoryOptions::changesInMemory), so are a file to write and one that was changed there.
    static bool open(std::fstream& stream, const std::string& path, StreamMode mode);
};

} // namespace KyrCoreUtils
