#include "LogDispatcher.h"

#include <kyr/LockGuard.h>

#include <utility>
#include <vector>

namespace zel::logging {

LogDispatcher& LogDispatcher::instance() {
    // Never destroyed: static objects of other libraries may log in their destructors.
    static LogDispatcher& dispatcher = *new LogDispatcher;
    return dispatcher;
}

void LogDispatcher::add(std::shared_ptr<LogSink> sink) {
    if (!sink) {
        return;
    }
    const KyrCoreUtils::LockGuard lock(mutex);
    auto changed = std::make_shared<Sinks>(*sinks);
    changed->push_back(std::move(sink));
    sinks = std::move(changed);
}

void LogDispatcher::remove(const std::shared_ptr<LogSink>& sink) {
    std::shared_ptr<const Sinks> former;
    const KyrCoreUtils::LockGuard lock(mutex);
    auto changed = std::make_shared<Sinks>(*sinks);
    std::erase(*changed, sink);
    former = std::exchange(sinks, std::move(changed));
}

void LogDispatcher::set(const std::string& name, std::shared_ptr<LogSink> sink) {
    std::shared_ptr<LogSink> former;
    {
        const KyrCoreUtils::LockGuard lock(mutex);
        former = std::exchange(named[name], sink);
    }
    if (former) {
        remove(former);
    }
    add(std::move(sink));
}

bool LogDispatcher::has(const std::string& name) const {
    const KyrCoreUtils::LockGuard lock(mutex);
    return named.contains(name);
}

void LogDispatcher::removeNamed(std::string_view prefix) {
    Sinks former;
    {
        const KyrCoreUtils::LockGuard lock(mutex);
        for (auto entry = named.begin(); entry != named.end();) {
            if (entry->first.starts_with(prefix)) {
                former.push_back(std::move(entry->second));
                entry = named.erase(entry);
            } else {
                ++entry;
            }
        }
    }
    for (const auto& sink : former) {
        remove(sink);
    }
}

void LogDispatcher::dispatch(const LogRecord& record) noexcept {
    const auto receivers = getSinks();
    for (const auto& sink : *receivers) {
        try {
            sink->write(record);
        } catch (...) {
            // A failure of a sink cannot be reported anywhere.
            continue;
        }
    }
}

std::shared_ptr<const LogDispatcher::Sinks> LogDispatcher::getSinks() const {
    const KyrCoreUtils::LockGuard lock(mutex);
    return sinks;
}

} // namespace zel::logging
