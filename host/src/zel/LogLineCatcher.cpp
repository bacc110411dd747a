#include <kyr/AnnotatedMutex.h>
#include <kyr/LockGuard.h>
#include <zel/LogLineCatcher.h>

#include <thread>
#include <utility>

namespace zel::logging {

class LogLineCatcher::Sink final : public LogSink {
public:
    Sink(std::string loggerName, Threads wantedThreads) : logger(std::move(loggerName)), threads(wantedThreads) {}

    void write(const LogRecord& record) override {
        const bool isWanted = threads == Threads::All || std::this_thread::get_id() == constructingThread;
        if (!isWanted || record.logger != logger) {
            return;
        }
        const KyrCoreUtils::LockGuard lock(mutex);
        text = record.text;
    }

    std::string getText() const {
        const KyrCoreUtils::LockGuard lock(mutex);
        return text;
    }

private:
    const std::string logger;
    const Threads threads;
    const std::thread::id constructingThread = std::this_thread::get_id();
    mutable KyrCoreUtils::AnnotatedMutex<> mutex;
    std::string text LUMORA_GUARDED_BY(mutex);
};

LogLineCatcher::LogLineCatcher(std::string loggerName, Threads threads)
    : sink(std::make_shared<Sink>(std::move(loggerName), threads)) {
    addSink(sink);
}

LogLineCatcher::~LogLineCatcher() {
    removeSink(sink);
}

std::string LogLineCatcher::getText() const {
    return sink->getText();
}

} // namespace zel::logging
