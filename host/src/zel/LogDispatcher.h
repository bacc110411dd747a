#pragma once

#include <zel/LogSink.h>

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace zel::logging {

/// Hands every record to the sinks that stand at that moment, with no lock held: a sink may take locks of its own, add
/// and remove sinks. A sink that was removed may still receive the record that is on its way. One for the process.
class LogDispatcher {
public:
    static LogDispatcher& instance();

    bool isDebugEnabled() const noexcept { return debugEnabled.load(std::memory_order_relaxed); }
    void setDebugEnabled(bool enabled) noexcept { debugEnabled.store(enabled, std::memory_order_relaxed); }

    void add(std::shared_ptr<LogSink> sink);
    void remove(const std::shared_ptr<LogSink>& sink);
    /// Adds `sink` in the place of the one that was set under the same name.
    void set(const std::string& name, std::shared_ptr<LogSink> sink);
    bool has(const std::string& name) const;
    /// Removes the sinks whose names begin so.
    void removeNamed(std::string_view prefix);

    /// A sink that throws loses the record, the others don't.
    void dispatch(const LogRecord& record) noexcept;

private:
    using Sinks = std::vector<std::shared_ptr<LogSink>>;

    LogDispatcher() = default;
    std::shared_ptr<const Sinks> getSinks() const;

    std::atomic<bool> debugEnabled{false};
    /// Guards the two below.
    mutable std::mutex mutex;
    /// Replaced as a whole, so that a dispatch under way keeps the list it began with.
    std::shared_ptr<const Sinks> sinks = std::make_shared<const Sinks>();
    std::map<std::string, std::shared_ptr<LogSink>> named;
};

} // namespace zel::logging
