#include "HeldServicesDispatcher.h"

namespace testing_host {

bool HeldServicesDispatcher::checkForUpdateAccess() const {
    return owner.load() == std::this_thread::get_id();
}

void HeldServicesDispatcher::enqueue(std::shared_ptr<zel::Task> task, bool ahead) {
    if (!task) {
        return;
    }
    const std::lock_guard lock(mutex);
    tasks.insert(ahead ? tasks.begin() : tasks.end(), std::move(task));
}

void HeldServicesDispatcher::enqueueBlock(std::shared_ptr<zel::Task> task, bool) {
    if (task) {
        task->run();
    }
}

void HeldServicesDispatcher::disown() {
    owner = std::thread::id();
}

void HeldServicesDispatcher::claim() {
    owner = std::this_thread::get_id();
}

std::vector<std::string> HeldServicesDispatcher::getTaskNames() const {
    const std::lock_guard lock(mutex);
    std::vector<std::string> names;
    for (const auto& task : tasks) {
        names.push_back(task->getName());
    }
    return names;
}

void HeldServicesDispatcher::runAll() {
    claim();
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

void HeldServicesDispatcher::clear() {
    std::deque<std::shared_ptr<zel::Task>> dropped;
    const std::lock_guard lock(mutex);
    dropped.swap(tasks);
}

} // namespace testing_host
