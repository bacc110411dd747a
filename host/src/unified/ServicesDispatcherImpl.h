#pragma once

#include "SerialQueue.h"

#include <unified/ServicesDispatcher.h>

#include <memory>

namespace ZelUnified::Processing {

/// Implements the services dispatcher with a serial queue that has its own thread or is pumped by the program.
class LUMORA_HOST_API ServicesDispatcherImpl final : public ServicesDispatcher {
public:
    explicit ServicesDispatcherImpl(SerialQueue::Mode mode) : queue(mode) {}

    bool checkForUpdateAccess() const override { return queue.isOwner(); }
    void enqueue(std::shared_ptr<zel::Task> task, bool ahead) override;
    void enqueueBlock(std::shared_ptr<zel::Task> task, bool ahead) override;

    SerialQueue& getQueue() { return queue; }

private:
    SerialQueue queue;
};

} // namespace ZelUnified::Processing
