#pragma once

#include <zel/ZelLog.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace zel::logging {

/// One line as it was written.
struct LogRecord {
    std::string logger;
    ZelLogLevel level;
    std::string file;
    int line;
    std::string function;
    std::string text; ///< UTF-8
};

/// Receives every record, on the thread that logs. It must not log itself.
class LogSink {
public:
    virtual ~LogSink() = default;
    virtual void write(const LogRecord& record) = 0;
};

/// A sink is written to until it is removed; one that is being removed may still get the record that is under way. Any
/// thread, as all below.
LUMORA_HOST_API void addSink(std::shared_ptr<LogSink> sink);
LUMORA_HOST_API void removeSink(const std::shared_ptr<LogSink>& sink);

/// Returns a sink that formats each record as the log files have it and passes it to `writeLine` with its line feed.
/// One call at a time, on the thread that logs.
LUMORA_HOST_API std::shared_ptr<LogSink> makeLineSink(std::function<void(std::string_view line)> writeLine);

/// Whether debug lines are written; off at start.
LUMORA_HOST_API void setDebugEnabled(bool enabled) noexcept;

/// Adds a rotating file of mode 0600; `path` is UTF-8. False when it can't be opened.
LUMORA_HOST_API bool logToFile(const std::string& path);
/// Closes the files that logToFile() opened.
LUMORA_HOST_API void closeLogFiles();
/// Sends records of level Warning and worse (all of them when `verbose`) to standard error.
LUMORA_HOST_API void logToStandardError(bool verbose);

} // namespace zel::logging
