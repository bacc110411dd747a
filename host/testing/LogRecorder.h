#pragma once

#include <zel/LogSink.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace testing_host {

/// Collects every log record while it lives. Debug lines only when asked for.
class LogRecorder {
public:
    enum class Debug { Off, On };

    explicit LogRecorder(Debug debug = Debug::Off);
    ~LogRecorder();
    LogRecorder(const LogRecorder&) = delete;
    LogRecorder& operator=(const LogRecorder&) = delete;

    std::vector<zel::logging::LogRecord> getRecords() const;
    /// The texts of one logger, in order.
    std::vector<std::string> getTexts(std::string_view logger) const;
    /// The texts of one level, in order.
    std::vector<std::string> getTexts(ZelLogLevel level) const;
    /// Whether any record holds `part` in its text.
    bool mentions(std::string_view part) const;
    void clear();

private:
    class Sink;
    std::shared_ptr<Sink> sink;
};

} // namespace testing_host
