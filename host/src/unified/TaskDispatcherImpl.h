#pragma once

#include "SerialQueue.h"

#include <unified/TaskDispatcher.h>

#include <functional>
#include <memory>
#include <string>

namespace ZelUnified::Processing {

/// Implements the background dispatcher with a serial queue that has its own thread.
class LUMORA_HOST_API TaskDispatcherImpl final : public TaskDispatcher {
public:
    void enqueue(std::shared_ptr<zel::Task> task) override;
    void enqueue(std::function<void()> work, const std::string& name) override;

    SerialQueue& getQueue() { return queue; }

private:
    SerialQueue queue{SerialQueue::Mode::OwnThread};
};

} // namespace ZelUnified::Processing
