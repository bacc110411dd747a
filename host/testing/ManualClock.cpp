#include "ManualClock.h"

#include <zel/TimerSource.h>

#include <algorithm>
#include <limits>
#include <map>
#include <mutex>
#include <utility>

namespace testing_host {

class ManualClock::Source final : public zel::common::TimerSource {
public:
    Alarm set(std::int64_t seconds, std::function<void()> ring) override {
        const std::lock_guard lock(mutex);
        const Alarm alarm = ++lastAlarm;
        pending.emplace(std::pair(later(seconds), alarm), std::move(ring));
        return alarm;
    }

    void cancel(Alarm alarm) override {
        std::function<void()> forgotten;
        const std::lock_guard lock(mutex);
        const auto found = std::find_if(pending.begin(), pending.end(),
                                        [alarm](const auto& entry) { return entry.first.second == alarm; });
        if (found != pending.end()) {
            forgotten.swap(found->second);
            pending.erase(found);
        }
    }

    void advance(std::int64_t seconds) {
        std::int64_t target = 0;
        {
            const std::lock_guard lock(mutex);
            target = later(seconds);
        }
        while (const auto ring = takeDue(target)) {
            ring();
        }
    }

    std::size_t getPendingCount() const {
        const std::lock_guard lock(mutex);
        return pending.size();
    }

private:
    std::int64_t later(std::int64_t seconds) const {
        constexpr auto never = std::numeric_limits<std::int64_t>::max();
        const auto wait = std::max<std::int64_t>(seconds, 0);
        return wait > never - now ? never : now + wait;
    }

    /// Returns the next alarm up to `target` and moves the clock to it; if there is none, moves the clock to `target`
    /// and returns an empty function.
    std::function<void()> takeDue(std::int64_t target) {
        const std::lock_guard lock(mutex);
        if (pending.empty() || pending.begin()->first.first > target) {
            now = std::max(now, target);
            return nullptr;
        }
        const auto next = pending.begin();
        now = std::max(now, next->first.first);
        auto ring = std::move(next->second);
        pending.erase(next);
        return ring;
    }

    mutable std::mutex mutex; ///< Guards all members below; never held while an alarm rings.
    std::int64_t now = 0;
    Alarm lastAlarm = 0;
    std::map<std::pair<std::int64_t, Alarm>, std::function<void()>> pending;
};

ManualClock::ManualClock() : source(std::make_shared<Source>()) {
    zel::common::TimerSource::overrideInstance(source);
}

ManualClock::~ManualClock() {
    zel::common::TimerSource::overrideInstance(nullptr);
}

void ManualClock::advance(std::int64_t seconds) {
    source->advance(seconds);
}

std::size_t ManualClock::getPendingCount() const {
    return source->getPendingCount();
}

} // namespace testing_host
