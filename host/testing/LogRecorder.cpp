#include "LogRecorder.h"

#include <kyr/AnnotatedMutex.h>
#include <kyr/LockGuard.h>

#include <algorithm>

namespace testing_host {

class LogRecorder::Sink final : public zel::logging::LogSink {
public:
    void write(const zel::logging::LogRecord& record) override {
        const KyrCoreUtils::LockGuard lock(mutex);
        records.push_back(record);
    }

    std::vector<zel::logging::LogRecord> getRecords() const {
        const KyrCoreUtils::LockGuard lock(mutex);
        return records;
    }

    void clear() {
        const KyrCoreUtils::LockGuard lock(mutex);
        records.clear();
    }

private:
    mutable KyrCoreUtils::AnnotatedMutex<> mutex;
    std::vector<zel::logging::LogRecord> records LUMORA_GUARDED_BY(mutex);
};

LogRecorder::LogRecorder(Debug debug) : sink(std::make_shared<Sink>()) {
    zel::logging::setDebugEnabled(debug == Debug::On);
    zel::logging::addSink(sink);
}

LogRecorder::~LogRecorder() {
    zel::logging::removeSink(sink);
    zel::logging::setDebugEnabled(false);
}

std::vector<zel::logging::LogRecord> LogRecorder::getRecords() const {
    return sink->getRecords();
}

std::vector<std::string> LogRecorder::getTexts(std::string_view logger) const {
    std::vector<std::string> texts;
    for (auto& record : sink->getRecords()) {
        if (record.logger == logger) {
            texts.push_back(std::move(record.text));
        }
    }
    return texts;
}

std::vector<std::string> LogRecorder::getTexts(ZelLogLevel level) const {
    std::vector<std::string> texts;
    for (auto& record : sink->getRecords()) {
        if (record.level == level) {
            texts.push_back(std::move(record.text));
        }
    }
    return texts;
}

bool LogRecorder::mentions(std::string_view part) const {
    return std::ranges::any_of(sink->getRecords(), [&](const zel::logging::LogRecord& record) {
        return record.text.find(part) != std::string::npos;
    });
}

void LogRecorder::clear() {
    sink->clear();
}

} // namespace testing_host
