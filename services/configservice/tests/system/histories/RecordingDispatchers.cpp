#include "RecordingDispatchers.h"

#include <kyr/FunctionTask.h>

#include <Signal.h>

#include <utility>

namespace config_model {

void RecordingServicesDispatcher::enqueue(std::shared_ptr<zel::Task> task, bool) {
    queue.post(std::move(task));
}

void RecordingServicesDispatcher::enqueueBlock(std::shared_ptr<zel::Task> task, bool) {
    if (checkForUpdateAccess()) {
        task->run();
        return;
    }
    const auto done = std::make_shared<testing_host::Signal>();
    const auto name = task->getName();
    queue.post(std::make_shared<KyrCoreUtils::FunctionTask>(
        [task = std::move(task), done] {
            task->run();
            done->set();
        },
        name));
    done->wait();
}

void RecordingTaskDispatcher::enqueue(std::function<void()> work, const std::string& name) {
    enqueue(std::make_shared<KyrCoreUtils::FunctionTask>(std::move(work), name));
}

} // namespace config_model
