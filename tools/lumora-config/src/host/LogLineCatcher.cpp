#include "LogLineCatcher.h"

#include <mutex>
#include <utility>

namespace lumora_config {

class LogLineCatcher::Sink final : public zel::logging::LogSink {
public:
    explicit Sink(std::string loggerName) : logger(std::move(loggerName)) {}

    void write(const zel::logging::LogRecord& record) override {
        if (record.logger != logger) {
            return;
        }
        const std::lock_guard lock(mutex);
        text = record.text;
    }

    std::string getText() const {
        const std::lock_guard lock(mutex);
        return text;
    }

private:
    const std::string logger;
    mutable std::mutex mutex;
    std::string text; ///< Guarded by `mutex`.
};

LogLineCatcher::LogLineCatcher(std::string loggerName) : sink(std::make_shared<Sink>(std::move(loggerName))) {
    zel::logging::addSink(sink);
}

LogLineCatcher::~LogLineCatcher() {
    zel::logging::removeSink(sink);
}

std::string LogLineCatcher::getText() const {
    return sink->getText();
}

} // namespace lumora_config
