#include <gtest/gtest.h>
#include <secure/Mutex.h>

#include <chrono>
#include <cstddef>
#include <cstdio>
#include <future>
#include <mutex>
#include <new>
#include <string>

namespace {

thread_local bool isMemoryShort = false;
thread_local void* lastAllocation = nullptr;

} // namespace

/// Makes a prepared allocation fail, and records the others.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    if (isMemoryShort) {
        return nullptr;
    }
    try {
        return lastAllocation = ::operator new(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

namespace {

using zel::Mutex;

/// Returns true if another thread can acquire the mutex. On this thread the recursion would hide that it is held.
bool isFree(Mutex& mutex) {
    std::promise<void> locked;
    auto tried = std::async(std::launch::async, [&] {
        const Mutex::ScopedLock lock(mutex);
        locked.set_value();
    });
    return locked.get_future().wait_for(std::chrono::seconds(10)) == std::future_status::ready;
}

TEST(Mutex, LockingTwiceOnOneThreadDoesNotBlock) {
    Mutex mutex;
    {
        const Mutex::ScopedLock outer(mutex);
        const Mutex::ScopedLock inner(mutex);
    }
    EXPECT_TRUE(isFree(mutex));
}

TEST(Mutex, ExcludesOtherThreads) {
    Mutex mutex;
    int counter = 0;
    const auto count = [&] {
        for (int i = 0; i < 10'000; ++i) {
            const Mutex::ScopedLock lock(mutex);
            ++counter;
        }
    };
    auto other = std::async(std::launch::async, count);
    count();
    other.get();
    EXPECT_EQ(counter, 20'000);
}

/// A mutex with access to its platform lock, which a test can try without waiting to see whether it is held.
struct ObservedMutex {
    bool isHeld() const {
        return std::async(std::launch::async,
                          [this] {
                              const std::unique_lock attempt(platformLock, std::try_to_lock);
                              return !attempt.owns_lock();
                          })
            .get();
    }

    Mutex mutex;
    std::recursive_mutex& platformLock = *static_cast<std::recursive_mutex*>(lastAllocation);
};

TEST(Mutex, IsHeldUntilItIsUnlockedAsOftenAsLocked) {
    ObservedMutex observed;
    EXPECT_FALSE(observed.isHeld());
    observed.mutex.lock();
    observed.mutex.lock();
    observed.mutex.unlock();
    EXPECT_TRUE(observed.isHeld());
    observed.mutex.unlock();
    EXPECT_FALSE(observed.isHeld());
}

TEST(Mutex, AScopedLockThatWasReleasedDoesNotUnlockAgain) {
    ObservedMutex observed;
    observed.mutex.lock();
    {
        Mutex::ScopedLock lock(observed.mutex);
        lock.release();
        EXPECT_TRUE(observed.isHeld());
        lock.release();
        EXPECT_TRUE(observed.isHeld()) << "the second release unlocked";
    }
    EXPECT_TRUE(observed.isHeld()) << "the destructor released the lock again";
    observed.mutex.unlock();
    EXPECT_FALSE(observed.isHeld());
}

TEST(Mutex, WithoutMemoryPrintsAnErrorAndLocksNothing) {
    testing::internal::CaptureStdout();
    isMemoryShort = true;
    Mutex mutex;
    isMemoryShort = false;
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Error in Mutex::Mutex(): could not allocate memory\n");
    mutex.lock();
    EXPECT_TRUE(isFree(mutex));
    mutex.unlock();
    mutex.unlock();
}

} // namespace
