#pragma once

#include <condition_variable>

namespace zel {

class Mutex;

/// What threads wait on while they hold a Mutex. A waiter asks again what it waits for: it may wake without a signal.
class Condition {
public:
    /// Gives the mutex back while it waits. The caller holds `owner` exactly once.
    void wait(Mutex& owner);
    /// Wakes one of those that wait now. Best called without the mutex.
    void signal() noexcept;
    /// Wakes all that wait now.
    void broadcast() noexcept;

private:
    std::condition_variable_any waiters;
};

} // namespace zel
