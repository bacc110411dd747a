#include <kyr/FunctionTask.h>

#include <HeldServicesDispatcher.h>

#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;
using testing_host::HeldServicesDispatcher;

namespace {

std::shared_ptr<zel::Task> task(std::function<void()> work, const std::string& name = "task") {
    return std::make_shared<KyrCoreUtils::FunctionTask>(std::move(work), name);
}

} // namespace

TEST(HeldServicesDispatcher, HoldsTasksUntilRunAllRunsThemAndTheTasksTheyPost) {
    HeldServicesDispatcher dispatcher;
    std::vector<std::string> ran;
    dispatcher.enqueue(task(
                           [&] {
                               ran.push_back("a");
                               dispatcher.enqueue(task([&] { ran.push_back("posted"); }), false);
                           },
                           "a"),
                       false);
    dispatcher.enqueue(task([&] { ran.push_back("b"); }, "b"), false);
    dispatcher.enqueue(task([&] { ran.push_back("ahead"); }, "ahead"), true);
    dispatcher.enqueue(nullptr, false);
    EXPECT_THAT(ran, IsEmpty());
    EXPECT_THAT(dispatcher.getTaskNames(), ElementsAre("ahead", "a", "b"));
    dispatcher.runAll();
    EXPECT_THAT(ran, ElementsAre("ahead", "a", "b", "posted"));
    EXPECT_THAT(dispatcher.getTaskNames(), IsEmpty());
}

TEST(HeldServicesDispatcher, BelongsToTheCreatingThreadUntilItIsDisownedOrClaimed) {
    HeldServicesDispatcher dispatcher;
    EXPECT_TRUE(dispatcher.checkForUpdateAccess());
    dispatcher.disown();
    EXPECT_FALSE(dispatcher.checkForUpdateAccess());
    std::thread([&] {
        dispatcher.claim();
        EXPECT_TRUE(dispatcher.checkForUpdateAccess());
    }).join();
    EXPECT_FALSE(dispatcher.checkForUpdateAccess());
    dispatcher.runAll();
    EXPECT_TRUE(dispatcher.checkForUpdateAccess());
}

TEST(HeldServicesDispatcher, EnqueueBlockRunsItsTaskBeforeHeldTasks) {
    HeldServicesDispatcher dispatcher;
    std::vector<std::string> ran;
    dispatcher.enqueue(task([&] { ran.push_back("waiting"); }), false);
    dispatcher.enqueueBlock(task([&] { ran.push_back("blocking"); }), false);
    dispatcher.enqueueBlock(nullptr, false);
    EXPECT_THAT(ran, ElementsAre("blocking"));
}
