#include "HeldTaskDispatcher.h"

#include <kyr/FunctionTask.h>

#include <utility>

namespace testing_host {

void HeldTaskDispatcher::enqueue(std::shared_ptr<zel::Task> task) {
    tasks.add(std::move(task), false);
}

void HeldTaskDispatcher::enqueue(std::function<void()> work, const std::string& name) {
    enqueue(std::make_shared<KyrCoreUtils::FunctionTask>(std::move(work), name));
}

} // namespace testing_host
