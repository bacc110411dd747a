#include "secure/RankedMutex.h"

#include "featuresets/adapters/config/chain/ConfigStoreManager.h"

#include <ConfigStoreManager_Observer.h>
#include <RecordingFactory.h>
#include <gtest/gtest.h>

#include <thread>

using zel::LockOrder;

namespace {

constexpr int outer = 1;
constexpr int inner = 2;
const char first = 0;
const char second = 0;

class LockOrderDeathTest : public testing::Test {
protected:
    LockOrderDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

void acquireOutwards() {
    LockOrder::enter(&first, inner);
    LockOrder::enter(&second, outer);
}

void acquireTwoOfOneRank() {
    LockOrder::enter(&first, inner);
    LockOrder::enter(&second, inner);
}

#ifndef NDEBUG
/// Reads the chain from a callback that must not acquire its lock.
class ReadingObserver final : public ZelUnified::ConfigStoreManager_Observer {
public:
    explicit ReadingObserver(ZelUnified::ConfigStoreManager& subject) : manager(subject) {}
    void onFireIfRequired(std::wstring) override {}
    void onSensitiveKeyAddedOrUpdated(std::wstring) override { manager.hasStoreWithName("any"); }
    void onConfigAddedOrUpdated(std::wstring, std::wstring, std::wstring, bool, bool, std::wstring, std::wstring,
                                bool) override {}

private:
    ZelUnified::ConfigStoreManager& manager;
};

void acquireTheChainLockUnderTheObserversLock() {
    ZelUnified::ConfigStoreManager manager(std::make_shared<testing_host::RecordingFactory>());
    ReadingObserver observer(manager);
    manager.addObserver(&observer);
    manager.setKeySensitive(L"key");
}
#endif

} // namespace

TEST(LockOrder, AThreadMayAcquireAHigherRankAndTheSameLockAgain) {
    LockOrder::enter(&first, outer);
    LockOrder::enter(&second, inner);
    LockOrder::enter(&first, outer);
    LockOrder::leave(&first);
    LockOrder::leave(&second);
    LockOrder::leave(&first);
}

TEST(LockOrder, AReleasedLockIsNoLongerChecked) {
    LockOrder::enter(&first, inner);
    LockOrder::leave(&first);
    LockOrder::enter(&second, outer);
    LockOrder::leave(&second);
}

TEST(LockOrder, EachThreadIsCheckedSeparately) {
    LockOrder::enter(&first, inner);
    std::thread([] {
        LockOrder::enter(&second, outer);
        LockOrder::leave(&second);
    }).join();
    LockOrder::leave(&first);
}

TEST_F(LockOrderDeathTest, AcquiringALowerRankEndsTheProcess) {
    EXPECT_DEATH(acquireOutwards(), "The lock order is broken: rank 1 is acquired while rank 2 is held");
}

TEST_F(LockOrderDeathTest, AcquiringTwoLocksOfOneRankEndsTheProcess) {
    EXPECT_DEATH(acquireTwoOfOneRank(), "The lock order is broken");
}

#ifndef NDEBUG
TEST_F(LockOrderDeathTest, AcquiringTheChainLockUnderTheObserversLockEndsTheProcess) {
    EXPECT_DEATH(acquireTheChainLockUnderTheObserversLock(),
                 "The lock order is broken: rank 1 is acquired while rank 2 is held");
}
#endif
