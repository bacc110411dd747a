#pragma once

#include <zel/LogSink.h>

#include <memory>
#include <string>

namespace lumora_config {

/// Keeps the last line that one logger wrote while it lives. Main thread; lines may come from any.
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
