#pragma once

#include <zel/LogSink.h>

#include <memory>
#include <string>

namespace inspection {

/// Holds the last line that this thread writes through one logger during the lifetime of this object.
class LoggedLine {
public:
    explicit LoggedLine(std::string loggerName);
    ~LoggedLine();
    LoggedLine(const LoggedLine&) = delete;
    LoggedLine& operator=(const LoggedLine&) = delete;

    std::string getText() const;

private:
    class Sink;
    const std::shared_ptr<Sink> sink;
};

} // namespace inspection
