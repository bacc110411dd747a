#include <secure/Mutex.h>

#include <cstdio>
#include <new>

namespace zel {

Mutex::Mutex() : platformLock(new (std::nothrow) std::recursive_mutex) {
    if (!platformLock) {
        std::fputs("Error in Mutex::Mutex(): could not allocate memory\n", stdout);
    }
}

Mutex::~Mutex() = default;

void Mutex::lock() {
    if (platformLock) {
        platformLock->lock();
    }
}

void Mutex::unlock() {
    if (platformLock) {
        platformLock->unlock();
    }
}

} // namespace zel
