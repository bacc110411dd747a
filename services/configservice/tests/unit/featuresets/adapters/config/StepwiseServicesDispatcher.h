#pragma once

#include <unified/ServicesDispatcher.h>

#include <RecordingFactory.h>

#include <deque>
#include <memory>
#include <string>
#include <vector>

namespace ZelUnified {

/// A services dispatcher without a thread that runs posted tasks one by one and records the names of the tasks that a
/// caller waited for. For one thread.
class StepwiseServicesDispatcher final : public Processing::ServicesDispatcher {
public:
    bool checkForUpdateAccess() const override { return access; }
    void enqueue(std::shared_ptr<zel::Task> task, bool) override { posted.push_back(std::move(task)); }
    void enqueueBlock(std::shared_ptr<zel::Task> task, bool) override {
        waitedFor.push_back(task->getName());
        task->run();
    }

    /// Runs the oldest pending task with access and returns its name.
    std::string step() {
        const auto task = posted.front();
        posted.pop_front();
        access = true;
        task->run();
        return task->getName();
    }

    bool access = true;
    std::deque<std::shared_ptr<zel::Task>> posted;
    std::vector<std::string> waitedFor;
};

/// A recording factory with such a dispatcher.
class StepwiseFactory final : public testing_host::RecordingFactory {
public:
    std::shared_ptr<Processing::ServicesDispatcher> getServicesDispatcher() override { return dispatcher; }

    const std::shared_ptr<StepwiseServicesDispatcher> dispatcher = std::make_shared<StepwiseServicesDispatcher>();
};

} // namespace ZelUnified
