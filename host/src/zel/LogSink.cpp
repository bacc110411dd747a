#include "LogDispatcher.h"
#include "SpdlogSink.h"

#include <zel/LogSink.h>

#include <utility>

namespace zel::logging {

namespace {

constexpr std::string_view filePrefix = "file ";

} // namespace

void addSink(std::shared_ptr<LogSink> sink) {
    LogDispatcher::instance().add(std::move(sink));
}

void removeSink(const std::shared_ptr<LogSink>& sink) {
    LogDispatcher::instance().remove(sink);
}

void setDebugEnabled(bool enabled) noexcept {
    LogDispatcher::instance().setDebugEnabled(enabled);
}

bool logToFile(const std::string& path) {
    const std::string name = std::string(filePrefix) + path;
    if (LogDispatcher::instance().has(name)) {
        return true;
    }
    auto sink = SpdlogSink::openFile(path);
    if (!sink) {
        return false;
    }
    LogDispatcher::instance().set(name, std::move(sink));
    return true;
}

void closeLogFiles() {
    LogDispatcher::instance().removeNamed(filePrefix);
}

std::shared_ptr<LogSink> makeLineSink(std::function<void(std::string_view)> writeLine) {
    return SpdlogSink::passLinesTo(std::move(writeLine));
}

void logToStandardError(bool verbose) {
    LogDispatcher::instance().set("standard error",
                                  SpdlogSink::standardError(verbose ? ZelLogLevel::Debug : ZelLogLevel::Warning));
}

} // namespace zel::logging
