#include "secure/ReadWriteLock.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <future>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace {

using zel::ReadLock;
using zel::ReadWriteLock;
using zel::WriteLock;

constexpr std::chrono::seconds watchdog{20};

/// Records the order of events; a thread can wait for one.
class Events {
public:
    void add(const std::string& event) {
        const std::lock_guard lock(mutex);
        seen.push_back(event);
        changed.notify_all();
    }
    bool waitFor(const std::string& event) {
        std::unique_lock lock(mutex);
        return changed.wait_for(lock, watchdog,
                                [&] { return std::find(seen.begin(), seen.end(), event) != seen.end(); });
    }
    std::vector<std::string> get() const {
        const std::lock_guard lock(mutex);
        return seen;
    }

private:
    mutable std::mutex mutex;
    std::condition_variable changed;
    std::vector<std::string> seen;
};

struct ReadWriteLockTest : testing::Test {
    ReadWriteLock lock;
    Events events;

    /// Returns false if the writer acquired the lock instead.
    bool waitForWaitingWriter() {
        while (lock.countWaitingWriters() == 0) {
            const auto seen = events.get();
            if (std::find(seen.begin(), seen.end(), "writer in") != seen.end()) {
                return false;
            }
            std::this_thread::yield();
        }
        return true;
    }

    template <typename Lock>
    std::future<void> start(const std::string& name) {
        return std::async(std::launch::async, [this, name] {
            events.add(name + " asks");
            const Lock held(lock);
            events.add(name + " in");
        });
    }
};

TEST_F(ReadWriteLockTest, ReadersShareIt) {
    const ReadLock mine(lock);
    start<ReadLock>("reader").get();
    EXPECT_EQ(events.get().back(), "reader in");
}

TEST_F(ReadWriteLockTest, AWriterExcludesOtherWriters) {
    long counter = 0;
    std::vector<std::future<void>> writers;
    for (int i = 0; i < 4; ++i) {
        writers.push_back(std::async(std::launch::async, [&] {
            for (int round = 0; round < 5'000; ++round) {
                const WriteLock held(lock);
                ++counter;
            }
        }));
    }
    for (auto& writer : writers) {
        writer.get();
    }
    EXPECT_EQ(counter, 20'000);
}

TEST_F(ReadWriteLockTest, AWriterWaitsForReadersAndReadersForAWriter) {
    long first = 0;
    long second = 0;
    std::atomic<bool> torn = false;
    std::vector<std::future<void>> threads;
    for (int i = 0; i < 2; ++i) {
        threads.push_back(std::async(std::launch::async, [&] {
            for (int round = 0; round < 3'000; ++round) {
                const WriteLock held(lock);
                ++first;
                ++second;
            }
        }));
        threads.push_back(std::async(std::launch::async, [&] {
            for (int round = 0; round < 3'000; ++round) {
                const ReadLock held(lock);
                torn = torn || first != second;
            }
        }));
    }
    for (auto& thread : threads) {
        thread.get();
    }
    EXPECT_FALSE(torn);
    EXPECT_EQ(first, 6'000);
}

TEST_F(ReadWriteLockTest, AWaitingWriterPrecedesLaterReaders) {
    ReadLock mine(lock);
    auto writer = start<WriteLock>("writer");
    ASSERT_TRUE(waitForWaitingWriter());
    std::vector<std::future<void>> readers;
    for (int i = 0; i < 4; ++i) {
        readers.push_back(start<ReadLock>("reader " + std::to_string(i)));
        ASSERT_TRUE(events.waitFor("reader " + std::to_string(i) + " asks"));
    }
    mine.release();
    writer.get();
    for (auto& reader : readers) {
        ASSERT_EQ(reader.wait_for(watchdog), std::future_status::ready);
    }
    std::vector<std::string> order = events.get();
    std::erase_if(order, [](const std::string& event) { return !event.ends_with(" in"); });
    ASSERT_EQ(order.size(), 5U);
    EXPECT_EQ(order.front(), "writer in");
}

TEST_F(ReadWriteLockTest, TheLastWriterWakesAllReaders) {
    std::vector<std::future<void>> readers;
    {
        const WriteLock mine(lock);
        for (int i = 0; i < 4; ++i) {
            readers.push_back(start<ReadLock>("reader " + std::to_string(i)));
            ASSERT_TRUE(events.waitFor("reader " + std::to_string(i) + " asks"));
        }
    }
    for (auto& reader : readers) {
        ASSERT_EQ(reader.wait_for(watchdog), std::future_status::ready);
    }
}

TEST_F(ReadWriteLockTest, AScopedLockThatWasReleasedDoesNotUnlockAgain) {
    ReadLock outer(lock);
    {
        ReadLock inner(lock);
        inner.release();
        inner.release();
    }
    auto writer = start<WriteLock>("writer");
    EXPECT_TRUE(waitForWaitingWriter()) << "the outer lock was released early";
    outer.release();
    EXPECT_EQ(writer.wait_for(watchdog), std::future_status::ready);
}

TEST_F(ReadWriteLockTest, AnUnlockWithoutAHolderHasNoEffect) {
    lock.unlock();
    auto reader = start<ReadLock>("reader");
    EXPECT_EQ(reader.wait_for(watchdog), std::future_status::ready);
    lock.unlock(); // lets the reader of a failed test end
}

TEST_F(ReadWriteLockTest, AReleasingReaderWakesNoWriterWhileOthersHoldTheLock) {
    ReadLock first(lock);
    ReadLock second(lock);
    auto writer = start<WriteLock>("writer");
    ASSERT_TRUE(waitForWaitingWriter());
    first.release();
    EXPECT_EQ(lock.countWaitingWriters(), 1);
    second.release();
    EXPECT_EQ(writer.wait_for(watchdog), std::future_status::ready);
    EXPECT_EQ(lock.countWaitingWriters(), 0);
}

} // namespace
