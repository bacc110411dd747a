#include "HeldTaskDispatcher.h"

#include <kyr/FunctionTask.h>

namespace testing_host {

void HeldTaskDispatcher::enqueue(std::shared_ptr<zel::Task> task) {
    if (!task) {
        return;
    }
    const std::lock_guard lock(mutex);
    tasks.push_back(std::move(task));
}

void HeldTaskDispatcher::enqueue(std::function<void()> work, const std::string& name) {
    enqueue(std::make_shared<KyrCoreUtils::FunctionTask>(std::move(work), name));
}

std::vector<std::string> HeldTaskDispatcher::getTaskNames() const {
    const std::lock_guard lock(mutex);
    std::vector<std::string> names;
    for (const auto& task : tasks) {
        names.push_back(task->getName());
    }
    return names;
}

void HeldTaskDispatcher::runAll() {
    for (;;) {
        std::shared_ptr<zel::Task> next;
        {
            const std::lock_guard lock(mutex);
            if (tasks.empty()) {
                return;
            }
            next = std::move(tasks.front());
            tasks.pop_front();
        }
        next->run();
    }
}

void HeldTaskDispatcher::clear() {
    std::deque<std::shared_ptr<zel::Task>> dropped;
    const std::lock_guard lock(mutex);
    dropped.swap(tasks);
}

} // namespace testing_host
