#include "HeldTasks.h"

#include <kyr/LockGuard.h>

#include <utility>

namespace testing_host {

void HeldTasks::add(std::shared_ptr<zel::Task> task, bool ahead) {
    if (!task) {
        return;
    }
    const KyrCoreUtils::LockGuard lock(mutex);
    tasks.insert(ahead ? tasks.begin() : tasks.end(), std::move(task));
}

std::vector<std::string> HeldTasks::getNames() const {
    const KyrCoreUtils::LockGuard lock(mutex);
    std::vector<std::string> names;
    for (const auto& task : tasks) {
        names.push_back(task->getName());
    }
    return names;
}

void HeldTasks::runAll() {
    while (const auto task = removeFirst()) {
        task->run();
    }
}

std::shared_ptr<zel::Task> HeldTasks::removeFirst() {
    const KyrCoreUtils::LockGuard lock(mutex);
    if (tasks.empty()) {
        return nullptr;
    }
    auto first = std::move(tasks.front());
    tasks.pop_front();
    return first;
}

void HeldTasks::clear() {
    std::deque<std::shared_ptr<zel::Task>> dropped; // destroyed after the unlock
    const KyrCoreUtils::LockGuard lock(mutex);
    dropped.swap(tasks);
}

} // namespace testing_host
