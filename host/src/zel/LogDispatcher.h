#pragma once

#include <kyr/AnnotatedMutex.h>
#include <zel/LogSink.h>

#include <atomic>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zel::logging {

/// Passes every record to the current sinks, with no lock held: a sink may acquire its own locks, and add and remove
/// sinks. A removed sink may still receive one record that is being written. The process has one dispatcher.
class LogDispatcher {
public:
    static LogDispatcher& instance();

    bool isDebugEnabled() const noexcept { return debugEnabled.load(std::memory_order_relaxed); }
    void setDebugEnabled(bool enabled) noexcept { debugEnabled.store(enabled, std::memory_order_relaxed); }

    void add(std::shared_ptr<LogSink> sink);
    void remove(const std::shared_ptr<LogSink>& sink);
    /// Adds `sink`, which replaces the one that was set with the same name.
    void set(const std::string& name, std::shared_ptr<LogSink> sink);
    bool has(const std::string& name) const;
    /// Removes the sinks whose names have that prefix.
    void removeNamed(std::string_view prefix);

    /// Passes the record to all sinks. If a sink throws, the others still receive the record.
    void dispatch(const LogRecord& record) noexcept;

private:
    using Sinks = std::vector<std::shared_ptr<LogSink>>;

    LogDispatcher() = default;
    std::shared_ptr<const Sinks> getSinks() const;

    std::atomic<bool> debugEnabled{false};
    mutable KyrCoreUtils::AnnotatedMutex<> mutex;
    /// Replaced as a whole, so that a running dispatch keeps its list.
    std::shared_ptr<const Sinks> sinks LUMORA_GUARDED_BY(mutex) = std::make_shared<const Sinks>();
    std::map<std::string, std::shared_ptr<LogSink>> named LUMORA_GUARDED_BY(mutex);
};

} // namespace zel::logging
