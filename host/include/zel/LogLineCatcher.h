#pragma once

#include <zel/LogSink.h>

#include <cstdint>
#include <memory>
#include <string>

namespace zel::logging {

/// Holds the last line that one logger wrote during the lifetime of this object. Any thread.
class LUMORA_HOST_API LogLineCatcher {
public:
    enum class Threads : std::uint8_t {
        All,
        Calling ///< Only lines of the thread that constructs this object.
    };

    explicit LogLineCatcher(std::string loggerName, Threads threads = Threads::All);
    ~LogLineCatcher();
    LogLineCatcher(const LogLineCatcher&) = delete;
    LogLineCatcher& operator=(const LogLineCatcher&) = delete;

    /// Returns the text of the line in UTF-8; "" if there is none.
    std::string getText() const;

private:
    class Sink;
    const std::shared_ptr<Sink> sink;
};

} // namespace zel::logging
