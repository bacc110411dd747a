#include "unified/ServicesDispatcherImpl.h"

#include "Task.h"

#include <functional>
#include <memory>
#include <utility>
#include <vector>

using testing::ElementsAre;
using namespace ZelUnified::Processing;
using unified_test::task;

TEST(ServicesDispatcherImpl, OnlyItsThreadHasUpdateAccess) {
    ServicesDispatcherImpl dispatcher(SerialQueue::Mode::OwnThread);
    dispatcher.getQueue().start();
    bool access = false;
    dispatcher.enqueueBlock(task([&] { access = dispatcher.checkForUpdateAccess(); }), false);
    EXPECT_TRUE(access);
    EXPECT_FALSE(dispatcher.checkForUpdateAccess());
}

TEST(ServicesDispatcherImpl, PostsATaskAtTheEndOrTheFrontOfTheQueue) {
    ServicesDispatcherImpl dispatcher(SerialQueue::Mode::Pumped);
    dispatcher.getQueue().start();
    std::vector<int> order;
    dispatcher.enqueue(task([&] { order.push_back(2); }), false);
    dispatcher.enqueue(task([&] { order.push_back(3); }), false);
    dispatcher.enqueue(task([&] { order.push_back(1); }), true);
    dispatcher.getQueue().pumpAll();
    EXPECT_THAT(order, ElementsAre(1, 2, 3));
}
