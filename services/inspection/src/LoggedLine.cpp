#include "LoggedLine.h"

#include <thread>
#include <utility>

namespace inspection {

/// Ignores other threads, so that its text needs no lock.
class LoggedLine::Sink final : public zel::logging::LogSink {
public:
    explicit Sink(std::string loggerName) : logger(std::move(loggerName)) {}

    void write(const zel::logging::LogRecord& record) override {
        if (std::this_thread::get_id() == thread && record.logger == logger) {
            text = record.text;
        }
    }

    const std::string& getText() const { return text; }

private:
    const std::thread::id thread = std::this_thread::get_id();
    const std::string logger;
    std::string text;
};

LoggedLine::LoggedLine(std::string loggerName) : sink(std::make_shared<Sink>(std::move(loggerName))) {
    zel::logging::addSink(sink);
}

LoggedLine::~LoggedLine() {
    zel::logging::removeSink(sink);
}

std::string LoggedLine::getText() const {
    return sink->getText();
}

} // namespace inspection
