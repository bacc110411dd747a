#pragma once

#include <kyr/ThreadSafety.h>

#include <condition_variable>

namespace zel {

class Mutex;

/// A condition variable for Mutex. A wait may end without a signal, so the caller checks its condition in a loop.
class Condition {
public:
    /// Releases the mutex while waiting and acquires it again. The caller must hold `owner` exactly once.
    void wait(Mutex& owner) LUMORA_REQUIRES(owner);
    /// Wakes one waiting thread. Cheaper if the caller does not hold the mutex.
    void signal() noexcept;
    /// Wakes all waiting threads.
    void broadcast() noexcept;

private:
    std::condition_variable_any waiters;
};

} // namespace zel
