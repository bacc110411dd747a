#include "ManualClock.h"

#include <kyr/AnnotatedMutex.h>
#include <kyr/LockGuard.h>
#include <zel/TimerSource.h>

#include <algorithm>
#include <limits>
#include <map>
#include <utility>

namespace testing_host {

class ManualClock::Source final : public zel::common::TimerSource {
public:
    Alarm set(std::int64_t seconds, std::function<void()> ring) override {
        const KyrCoreUtils::LockGuard lock(mutex);
        const Alarm alarm = ++lastAlarm;
        pending.emplace(std::pair(later(seconds), alarm), std::move(ring));
        return alarm;
    }

    void cancel(Alarm alarm) override {
        std::function<void()> forgotten;
        const KyrCoreUtils::LockGuard lock(mutex);
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
            const KyrCoreUtils::LockGuard lock(mutex);
            target = later(seconds);
        }
        while (const auto ring = removeDue(target)) {
            ring();
        }
    }

    std::size_t getPendingCount() const {
        const KyrCoreUtils::LockGuard lock(mutex);
        return pending.size();
    }

private:
    std::int64_t later(std::int64_t seconds) const LUMORA_REQUIRES(mutex) {
        constexpr auto never = std::numeric_limits<std::int64_t>::max();
        const auto wait = std::max<std::int64_t>(seconds, 0);
        return wait > never - now ? never : now + wait;
    }

    /// Removes and returns the next alarm up to `target`, and moves the clock to it. If there is none, moves the clock
    /// to `target` and returns an empty function.
    std::function<void()> removeDue(std::int64_t target) {
        const KyrCoreUtils::LockGuard lock(mutex);
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

    mutable KyrCoreUtils::AnnotatedMutex<> mutex; ///< Never held while an alarm rings.
    std::int64_t now LUMORA_GUARDED_BY(mutex) = 0;
    Alarm lastAlarm LUMORA_GUARDED_BY(mutex) = 0;
    std::map<std::pair<std::int64_t, Alarm>, std::function<void()>> pending LUMORA_GUARDED_BY(mutex);
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
