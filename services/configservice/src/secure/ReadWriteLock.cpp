#include "ReadWriteLock.h"

namespace zel {

void ReadWriteLock::enterAsReader() {
    const Mutex::ScopedLock hold(mutex);
    while (state < 0 || waitingWriters > 0) {
        readers.wait(mutex);
    }
    ++state;
}

void ReadWriteLock::enterAsWriter() {
    const Mutex::ScopedLock hold(mutex);
    while (state != 0) {
        ++waitingWriters;
        writers.wait(mutex);
        --waitingWriters;
    }
    state = -1;
}

void ReadWriteLock::leave() {
    bool wakeWriter = false;
    bool wakeReaders = false;
    {
        const Mutex::ScopedLock hold(mutex);
        if (state < 0) {
            state = 0;
        } else if (state > 0) {
            --state;
        }
        wakeWriter = waitingWriters > 0 && state == 0;
        wakeReaders = waitingWriters == 0;
    }
    if (wakeWriter) {
        writers.signal();
    }
    if (wakeReaders) {
        readers.broadcast();
    }
}

std::int32_t ReadWriteLock::countWaitingWriters() {
    const Mutex::ScopedLock hold(mutex);
    return waitingWriters;
}

} // namespace zel
