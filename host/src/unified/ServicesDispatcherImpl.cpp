#include "ServicesDispatcherImpl.h"

#include <utility>

namespace ZelUnified::Processing {

void ServicesDispatcherImpl::enqueue(std::shared_ptr<zel::Task> task, bool ahead) {
    queue.enqueue(std::move(task), ahead);
}

void ServicesDispatcherImpl::enqueueBlock(std::shared_ptr<zel::Task> task, bool ahead) {
    queue.enqueueBlock(std::move(task), ahead);
}

} // namespace ZelUnified::Processing
