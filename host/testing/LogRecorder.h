#pragma once

#include <zel/LogSink.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace testing_host {

/// Collects every log record while it exists. Debug lines only on request.
class LogRecorder {
public:
    enum class Debug { Off, On };

    explicit LogRecorder(Debug debug = Debug::Off);
    ~LogRecorder();
    LogRecorder(const LogRecorder&) = delete;
    LogRecorder& operator=(const LogRecorder&) = delete;

    std::vector<zel::logging::LogRecord> getRecords() const;
    /// Returns the texts of one logger, in order.
    std::vector<std::string> getTexts(std::string_view logger) const;
    /// Returns the texts of one level, in order.
    std::vector<std::string> getTexts(ZelLogLevel level) const;
    /// Returns true if the text of any record contains `part`.
    bool mentions(std::string_view part) const;
    void clear();

private:
    class Sink;
    std::shared_ptr<Sink> sink;
};

} // namespace testing_host
