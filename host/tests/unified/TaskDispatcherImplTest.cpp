#include "unified/TaskDispatcherImpl.h"

#include "Task.h"

#include <LogRecorder.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using testing::ElementsAre;
using testing::HasSubstr;
using testing_host::LogRecorder;
using unified_test::task;
using ZelUnified::Processing::TaskDispatcherImpl;

TEST(TaskDispatcherImpl, RunsTasksAndFunctionsInOrderOnItsThread) {
    TaskDispatcherImpl dispatcher;
    std::vector<int> order;
    std::thread::id ranOn;
    dispatcher.getQueue().start();
    dispatcher.enqueue(task([&] { order.push_back(1); }));
    dispatcher.enqueue(
        [&] {
            order.push_back(2);
            ranOn = std::this_thread::get_id();
        },
        "second");
    dispatcher.getQueue().flush();
    EXPECT_THAT(order, ElementsAre(1, 2));
    EXPECT_NE(ranOn, std::this_thread::get_id());
}

TEST(TaskDispatcherImpl, AFunctionIsLoggedByItsName) {
    const LogRecorder log;
    TaskDispatcherImpl dispatcher;
    dispatcher.getQueue().start();
    dispatcher.enqueue([] { throw std::runtime_error("broken"); }, "ConfigStore::persistValues");
    dispatcher.getQueue().flush();
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error), ElementsAre(HasSubstr("ConfigStore::persistValues")));
}

TEST(TaskDispatcherImpl, AnEmptyTaskOrFunctionIsIgnored) {
    const LogRecorder log;
    TaskDispatcherImpl dispatcher;
    dispatcher.getQueue().start();
    dispatcher.enqueue(nullptr);
    dispatcher.enqueue(std::function<void()>(), "empty");
    dispatcher.getQueue().flush();
    EXPECT_TRUE(log.getRecords().empty());
}
