#include "base/PropertyNotifierImpl.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace ZelUnified {
namespace {

/// Records the names of the callbacks in call order.
struct Calls {
    std::function<void()> note(std::string name) {
        return [this, name = std::move(name)] { names.push_back(name); };
    }
    std::vector<std::string> names;
};

using Names = std::vector<std::string>;

TEST(PropertyNotifierImpl, FiringWithoutConnectionsDoesNothing) {
    PropertyNotifierImpl notifier;
    EXPECT_TRUE(notifier.isEmpty());
    notifier.fire();
    EXPECT_TRUE(notifier.isEmpty());
}

TEST(PropertyNotifierImpl, CallsInTheOrderOfConnecting) {
    Calls calls;
    PropertyNotifierImpl notifier;
    notifier.connect(calls.note("a"));
    notifier.connect(calls.note("b"));
    EXPECT_FALSE(notifier.isEmpty());
    notifier.fire();
    notifier.fire();
    EXPECT_EQ(calls.names, (Names{"a", "b", "a", "b"}));
}

TEST(PropertyNotifierImpl, ANewConnectionIsConnectedAndOwnedByTheListOnly) {
    auto notifier = std::make_unique<PropertyNotifierImpl>();
    const auto handle = notifier->connect([] {});
    EXPECT_EQ(handle.use_count(), 1);
    EXPECT_TRUE(handle.lock()->connected());
    notifier.reset();
    EXPECT_TRUE(handle.expired());
}

TEST(PropertyNotifierImpl, AReferenceToAConnectionDoesNotKeepTheListAlive) {
    auto notifier = std::make_unique<PropertyNotifierImpl>();
    const auto captured = std::make_shared<int>(0);
    notifier->connect([captured] {});
    const auto held = notifier->connect([] {}).lock();
    notifier.reset();
    EXPECT_EQ(captured.use_count(), 1);
    held->disconnect();
    EXPECT_FALSE(held->connected());
}

TEST(PropertyNotifierImpl, AConnectionDisconnectedDuringAFiringIsNotCalled) {
    Calls calls;
    PropertyNotifierImpl notifier;
    std::weak_ptr<PropertyNotifierConnection> later;
    notifier.connect([&] { later.lock()->disconnect(); });
    later = notifier.connect(calls.note("later"));
    notifier.connect(calls.note("last"));
    notifier.fire();
    EXPECT_EQ(calls.names, Names{"last"});
}

TEST(PropertyNotifierImpl, AConnectionRemovedDuringAFiringIsDestroyedAfterIt) {
    PropertyNotifierImpl notifier;
    std::weak_ptr<PropertyNotifierConnection> later;
    bool aliveAfterDisconnect = false;
    notifier.connect([&] {
        later.lock()->disconnect();
        aliveAfterDisconnect = !later.expired();
    });
    later = notifier.connect([] {});
    notifier.fire();
    EXPECT_TRUE(aliveAfterDisconnect);
    EXPECT_TRUE(later.expired());
}

TEST(PropertyNotifierImpl, AConnectionAddedDuringAFiringIsCalledFromTheNextOneOn) {
    Calls calls;
    PropertyNotifierImpl notifier;
    bool added = false;
    notifier.connect([&] {
        calls.names.push_back("first");
        if (!std::exchange(added, true)) {
            notifier.connect(calls.note("added"));
        }
    });
    notifier.fire();
    EXPECT_EQ(calls.names, Names{"first"});
    notifier.fire();
    EXPECT_EQ(calls.names, (Names{"first", "first", "added"}));
}

TEST(PropertyNotifierImpl, ACallbackMayUseItsCapturesAfterItDisconnectsItself) {
    PropertyNotifierImpl notifier;
    std::weak_ptr<PropertyNotifierConnection> own;
    std::string seen;
    auto captured = std::make_shared<std::string>("text on the heap");
    own = notifier.connect([&own, &seen, captured] {
        own.lock()->disconnect();
        seen = *captured;
    });
    captured.reset();
    notifier.fire();
    EXPECT_EQ(seen, "text on the heap");
    EXPECT_TRUE(notifier.isEmpty());
    EXPECT_TRUE(own.expired());
}

TEST(PropertyNotifierImpl, ACallbackMayDestroyTheNotifier) {
    Calls calls;
    auto notifier = std::make_unique<PropertyNotifierImpl>();
    notifier->connect([&] { notifier.reset(); });
    notifier->connect(calls.note("after"));
    notifier->fire();
    EXPECT_FALSE(notifier);
    EXPECT_EQ(calls.names, Names{"after"});
}

TEST(PropertyNotifierImpl, ACallbackMayFireTheSameNotifier) {
    Calls calls;
    PropertyNotifierImpl notifier;
    bool nested = false;
    notifier.connect([&] {
        calls.names.push_back("outer");
        if (!std::exchange(nested, true)) {
            notifier.fire();
        }
    });
    notifier.connect(calls.note("second"));
    notifier.fire();
    EXPECT_EQ(calls.names, (Names{"outer", "outer", "second", "second"}));
}

TEST(PropertyNotifierImpl, FiringAnEmptyCallbackThrowsAndStopsTheFiring) {
    Calls calls;
    PropertyNotifierImpl notifier;
    notifier.connect(calls.note("before"));
    notifier.connect(std::function<void()>());
    notifier.connect(calls.note("behind"));
    EXPECT_THROW(notifier.fire(), std::bad_function_call);
    EXPECT_EQ(calls.names, Names{"before"});
}

TEST(PropertyNotifierImpl, AnExceptionOfACallbackStopsTheFiringAndPropagates) {
    Calls calls;
    PropertyNotifierImpl notifier;
    notifier.connect([] { throw std::runtime_error("refused"); });
    notifier.connect(calls.note("behind"));
    EXPECT_THROW(notifier.fire(), std::runtime_error);
    EXPECT_TRUE(calls.names.empty());
}

TEST(PropertyNotifierImpl, AConnectionConnectedTwiceIsCalledTwiceAndSkippedAfterOneDisconnect) {
    Calls calls;
    PropertyNotifierImpl notifier;
    const auto connection =
        std::dynamic_pointer_cast<PropertyNotifierImpl::Connection>(notifier.connect(calls.note("twice")).lock());
    ASSERT_TRUE(connection);
    connection->connect();
    notifier.fire();
    EXPECT_EQ(calls.names, (Names{"twice", "twice"}));
    calls.names.clear();
    connection->disconnect();
    notifier.fire();
    EXPECT_FALSE(connection->connected());
    EXPECT_FALSE(notifier.isEmpty());
    EXPECT_TRUE(calls.names.empty());
}

TEST(PropertyNotifierImpl, CopiesShareOneList) {
    Calls calls;
    PropertyNotifierImpl original;
    PropertyNotifierImpl copy(original);
    copy.connect(calls.note("by the copy"));
    EXPECT_FALSE(original.isEmpty());
    original.fire();
    EXPECT_EQ(calls.names, Names{"by the copy"});
}

TEST(PropertyNotifierImpl, MovingTransfersTheList) {
    Calls calls;
    PropertyNotifierImpl original;
    const auto handle = original.connect(calls.note("moved"));
    PropertyNotifierImpl target(std::move(original));
    target.fire();
    EXPECT_EQ(calls.names, Names{"moved"});
    EXPECT_TRUE(handle.lock()->connected());
}

TEST(PropertyNotifierImpl, AMovedFromNotifierDoesNotHoldTheList) {
    PropertyNotifierImpl original;
    const auto handle = original.connect([] {});
    std::optional<PropertyNotifierImpl> target(std::move(original));
    EXPECT_FALSE(handle.expired());
    target.reset();
    EXPECT_TRUE(handle.expired());
}

} // namespace
} // namespace ZelUnified
