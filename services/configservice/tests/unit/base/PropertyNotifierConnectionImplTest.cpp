#include "base/PropertyNotifierImpl.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace ZelUnified {
namespace {

using Connection = PropertyNotifierImpl::Connection;

struct PropertyNotifierConnectionImplTest : testing::Test {
    std::shared_ptr<Connection> makeConnection() {
        return std::make_shared<Connection>([this] { ++calls; }, list);
    }

    int calls = 0;
    std::shared_ptr<Connection::List> list = std::make_shared<Connection::List>();
};

TEST_F(PropertyNotifierConnectionImplTest, IsNeitherListedNorConnectedAtFirst) {
    const auto connection = makeConnection();
    EXPECT_FALSE(connection->connected());
    EXPECT_TRUE(list->empty());
}

TEST_F(PropertyNotifierConnectionImplTest, ConnectAppendsItToTheListAndSetsTheFlag) {
    const auto first = makeConnection();
    const auto second = makeConnection();
    first->connect();
    second->connect();
    EXPECT_TRUE(first->connected());
    EXPECT_EQ(*list, (Connection::List{first, second}));
}

TEST_F(PropertyNotifierConnectionImplTest, DisconnectKeepsTheOrderOfTheOthers) {
    const auto first = makeConnection();
    const auto second = makeConnection();
    const auto third = makeConnection();
    for (const auto& connection : {first, second, third}) {
        connection->connect();
    }
    second->disconnect();
    EXPECT_FALSE(second->connected());
    EXPECT_EQ(*list, (Connection::List{first, third}));
}

TEST_F(PropertyNotifierConnectionImplTest, OneDisconnectRemovesOneOfTwoEntriesAndClearsTheFlag) {
    const auto connection = makeConnection();
    connection->connect();
    connection->connect();
    connection->disconnect();
    EXPECT_EQ(*list, Connection::List{connection});
    EXPECT_FALSE(connection->connected());
}

TEST_F(PropertyNotifierConnectionImplTest, ASecondDisconnectDoesNotRemoveOtherConnections) {
    const auto connection = makeConnection();
    const auto other = makeConnection();
    connection->connect();
    other->connect();
    connection->disconnect();
    connection->disconnect();
    EXPECT_EQ(*list, Connection::List{other});
}

TEST_F(PropertyNotifierConnectionImplTest, DisconnectIsSafeIfTheListHoldsTheLastReference) {
    const auto captured = std::make_shared<int>(0);
    // The test keeps no weak pointer: it would keep the memory allocated and hide a late write to it.
    auto connection = std::make_shared<Connection>([captured] {}, list);
    connection->connect();
    Connection& raw = *connection;
    connection.reset();
    raw.disconnect();
    EXPECT_EQ(captured.use_count(), 1);
    EXPECT_TRUE(list->empty());
}

TEST_F(PropertyNotifierConnectionImplTest, WithoutAListConnectKeepsTheFlagAndDisconnectClearsIt) {
    const auto never = makeConnection();
    const auto connected = makeConnection();
    connected->connect();
    list.reset();
    never->connect();
    connected->connect();
    EXPECT_FALSE(never->connected());
    EXPECT_TRUE(connected->connected());
    connected->disconnect();
    EXPECT_FALSE(connected->connected());
}

TEST_F(PropertyNotifierConnectionImplTest, ThrowsWithoutASharedOwnerOnlyIfItAccessesTheList) {
    Connection unowned([] {}, list);
    EXPECT_THROW(unowned.connect(), std::bad_weak_ptr);
    EXPECT_FALSE(unowned.connected());
    EXPECT_NO_THROW(unowned.disconnect()) << "an empty list is not searched";
    makeConnection()->connect();
    EXPECT_THROW(unowned.disconnect(), std::bad_weak_ptr);
    list.reset();
    EXPECT_NO_THROW(unowned.connect());
    EXPECT_NO_THROW(unowned.disconnect());
}

TEST_F(PropertyNotifierConnectionImplTest, ReturnsACopyOfItsCallback) {
    const auto connection = makeConnection();
    const auto callback = connection->getFxn();
    callback();
    EXPECT_EQ(calls, 1);
}

TEST_F(PropertyNotifierConnectionImplTest, AssignmentCopiesCallbackListAndFlag) {
    const auto source = makeConnection();
    source->connect();
    const auto target = std::make_shared<Connection>(std::function<void()>(), std::make_shared<Connection::List>());
    *target = *source;
    EXPECT_TRUE(target->connected());
    target->getFxn()();
    EXPECT_EQ(calls, 1);
    target->connect();
    EXPECT_EQ(*list, (Connection::List{source, target}));
}

} // namespace
} // namespace ZelUnified
