#pragma once

#include <zel/LogSink.h>

#include <memory>
#include <string>

namespace lumora_config {

/// Holds the last line that one logger wrote during the lifetime of this object. Main thread; log lines may come from
/// any thread.
class LogLineCatcher {
public:
    explicit LogLineCatcher(std::string loggerName);
    ~LogLineCatcher();
    LogLineCatcher(const LogLineCatcher&) = delete;
    LogLineCatcher& operator=(const LogLineCatcher&) = delete;

    std::string getText() const;

private:
    class Sink;
    const std::shared_ptr<Sink> sink;
};

} // namespace lumora_config
