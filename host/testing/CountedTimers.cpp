#include "CountedTimers.h"

#include "Signal.h"

#include <kyr/AnnotatedMutex.h>
#include <kyr/LockGuard.h>
#include <zel/TimerSource.h>

#include <map>
#include <utility>

namespace testing_host {

using zel::common::TimerSource;

class CountedTimers::Source final : public TimerSource, public std::enable_shared_from_this<Source> {
public:
    Alarm set(std::int64_t seconds, std::function<void()> ring) override {
        Alarm number = 0;
        {
            const KyrCoreUtils::LockGuard lock(mutex);
            number = ++lastNumber;
            pending.emplace(number, 0);
            seconds = wait == Wait::None ? 0 : seconds;
        }
        const auto alarm = real->set(seconds, [self = shared_from_this(), number, ring = std::move(ring)] {
            self->forget(number);
            ring();
        });
        const KyrCoreUtils::LockGuard lock(mutex);
        if (const auto found = pending.find(number); found != pending.end()) {
            found->second = alarm;
        }
        return number;
    }

    void cancel(Alarm number) override {
        Alarm alarm = 0;
        {
            const KyrCoreUtils::LockGuard lock(mutex);
            const auto found = pending.find(number);
            if (found == pending.end()) {
                return;
            }
            alarm = found->second;
            pending.erase(found);
        }
        real->cancel(alarm);
    }

    void setWait(Wait newWait) {
        const KyrCoreUtils::LockGuard lock(mutex);
        wait = newWait;
    }

    std::size_t getPendingCount() const {
        const KyrCoreUtils::LockGuard lock(mutex);
        return pending.size();
    }

    bool settle() const {
        const auto reached = std::make_shared<Signal>();
        real->set(0, [reached] { reached->set(); });
        return reached->wait();
    }

private:
    void forget(Alarm number) {
        const KyrCoreUtils::LockGuard lock(mutex);
        pending.erase(number);
    }

    const std::shared_ptr<TimerSource> real = TimerSource::getInstance();
    mutable KyrCoreUtils::AnnotatedMutex<> mutex;
    Wait wait LUMORA_GUARDED_BY(mutex) = Wait::AsAsked;
    Alarm lastNumber LUMORA_GUARDED_BY(mutex) = 0;
    std::map<Alarm, Alarm>
        pending LUMORA_GUARDED_BY(mutex); ///< Returned number to real one, which is 0 until set() returns.
};

CountedTimers::CountedTimers() : source(std::make_shared<Source>()) {
    TimerSource::overrideInstance(source);
}

CountedTimers::~CountedTimers() {
    TimerSource::overrideInstance(nullptr);
}

void CountedTimers::setWait(Wait wait) {
    source->setWait(wait);
}

std::size_t CountedTimers::getPendingCount() const {
    return source->getPendingCount();
}

bool CountedTimers::settle() const {
    return source->settle();
}

} // namespace testing_host
