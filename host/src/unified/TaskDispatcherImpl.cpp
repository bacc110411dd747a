#include "TaskDispatcherImpl.h"

#include <kyr/FunctionTask.h>

#include <utility>

namespace ZelUnified::Processing {

void TaskDispatcherImpl::enqueue(std::shared_ptr<zel::Task> task) {
    queue.enqueue(std::move(task), false);
}

void TaskDispatcherImpl::enqueue(std::function<void()> work, const std::string& name) {
    if (work) {
        enqueue(std::make_shared<KyrCoreUtils::FunctionTask>(std::move(work), name));
    }
}

} // namespace ZelUnified::Processing
