#include <kyr/FunctionTask.h>

#include <HeldTaskDispatcher.h>

#include <memory>
#include <string>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;
using testing_host::HeldTaskDispatcher;

TEST(HeldTaskDispatcher, HoldsTasksUntilRunAllRunsThemAndTheTasksTheyPost) {
    HeldTaskDispatcher dispatcher;
    std::vector<std::string> ran;
    dispatcher.enqueue(
        [&] {
            ran.push_back("function");
            dispatcher.enqueue([&] { ran.push_back("posted"); }, "posted");
        },
        "function");
    dispatcher.enqueue(std::make_shared<KyrCoreUtils::FunctionTask>([&] { ran.push_back("task"); }, "task"));
    dispatcher.enqueue(nullptr);
    EXPECT_THAT(ran, IsEmpty());
    EXPECT_THAT(dispatcher.getTaskNames(), ElementsAre("function", "task"));
    dispatcher.runAll();
    EXPECT_THAT(ran, ElementsAre("function", "task", "posted"));
}

TEST(HeldTaskDispatcher, DropsHeldTasks) {
    HeldTaskDispatcher dispatcher;
    bool ran = false;
    dispatcher.enqueue([&] { ran = true; }, "dropped");
    dispatcher.clear();
    dispatcher.runAll();
    EXPECT_FALSE(ran);
}
