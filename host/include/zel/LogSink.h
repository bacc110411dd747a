#pragma once

#include <zel/ZelLog.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace zel::logging {

/// One log line.
struct LogRecord {
    std::string logger;
    ZelLogLevel level;
    std::string file;
    int line;
    std::string function;
    std::string text; ///< UTF-8
};

/// Receives every record, on the thread that logs. A sink must not log.
class LogSink {
public:
    virtual ~LogSink() = default;
    virtual void write(const LogRecord& record) = 0;
};

/// Adds a sink, which receives records until it is removed. During its removal, a sink may still receive one record
/// that is being written. Any thread, like all functions below.
LUMORA_HOST_API void addSink(std::shared_ptr<LogSink> sink);
LUMORA_HOST_API void removeSink(const std::shared_ptr<LogSink>& sink);

/// Returns a sink that formats each record as in the log files and passes the line, with its line feed, to `writeLine`.
/// `writeLine` is called on the thread that logs, never concurrently.
LUMORA_HOST_API std::shared_ptr<LogSink> makeLineSink(std::function<void(std::string_view line)> writeLine);

/// Enables or disables debug lines; disabled by default.
LUMORA_HOST_API void setDebugEnabled(bool enabled) noexcept;

/// Adds a rotating log file with mode 0600; `path` is UTF-8. Returns false if the file cannot be opened.
LUMORA_HOST_API bool logToFile(const std::string& path);
/// Closes the files that logToFile() opened.
LUMORA_HOST_API void closeLogFiles();
/// Writes records of level Warning and worse (all records if `verbose`) to standard error.
LUMORA_HOST_API void logToStandardError(bool verbose);

} // namespace zel::logging
