#pragma once

#include "RecordedQueue.h"

#include <unified/ServicesDispatcher.h>
#include <unified/TaskDispatcher.h>

#include <functional>
#include <memory>
#include <string>
#include <thread>

namespace config_model {

/// A services dispatcher whose thread is the one that constructs it.
class RecordingServicesDispatcher final : public ZelUnified::Processing::ServicesDispatcher {
public:
    explicit RecordingServicesDispatcher(HistoryClock& clock) : queue(clock) {}

    bool checkForUpdateAccess() const override { return std::this_thread::get_id() == owner; }
    void enqueue(std::shared_ptr<zel::Task> task, bool ahead) override;
    void enqueueBlock(std::shared_ptr<zel::Task> task, bool ahead) override;

    RecordedQueue queue;

private:
    const std::thread::id owner = std::this_thread::get_id();
};

class RecordingTaskDispatcher final : public ZelUnified::Processing::TaskDispatcher {
public:
    explicit RecordingTaskDispatcher(HistoryClock& clock) : queue(clock) {}

    void enqueue(std::shared_ptr<zel::Task> task) override { queue.post(std::move(task)); }
    void enqueue(std::function<void()> work, const std::string& name) override;

    RecordedQueue queue;
};

} // namespace config_model
