#include "Condition.h"

#include <secure/Mutex.h>

namespace zel {

void Condition::wait(Mutex& owner) {
    waiters.wait(owner);
}

void Condition::signal() noexcept {
    waiters.notify_one();
}

void Condition::broadcast() noexcept {
    waiters.notify_all();
}

} // namespace zel
