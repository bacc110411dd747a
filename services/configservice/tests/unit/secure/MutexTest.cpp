#include <gtest/gtest.h>
#include <secure/Mutex.h>

#include <chrono>
#include <cstddef>
#include <cstdio>
#include <future>
#include <new>
#include <string>

namespace {

thread_local bool isMemoryShort = false;

} // namespace

/// Lets an allocation fail that is ready for it.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    if (isMemoryShort) {
        return nullptr;
    }
    try {
        return ::operator new(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

namespace {

using zel::Mutex;

/// Tries from another thread, where the recursion of this one does not help: counts on both sides of a lock.
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

TEST(Mutex, KeepsOtherThreadsOut) {
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

TEST(Mutex, AScopedLockThatWasReleasedDoesNotUnlockAgain) {
    Mutex mutex;
    mutex.lock();
    {
        Mutex::ScopedLock lock(mutex);
        lock.release();
        lock.release();
    }
    bool entered = false;
    auto other = std::async(std::launch::async, [&] {
        const Mutex::ScopedLock lock(mutex);
        return entered;
    });
    entered = true;
    mutex.unlock();
    EXPECT_TRUE(other.get()) << "the outer lock was given up early";
}

TEST(Mutex, WithoutMemoryItSaysSoOnStandardOutputAndLocksNothing) {
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
