#include "RecordedQueue.h"

#include <utility>

namespace config_model {

void RecordedQueue::post(std::shared_ptr<zel::Task> task) {
    const std::lock_guard lock(mutex);
    entries.push_back({task->getName(), std::this_thread::get_id(), ++clock});
    tasks.push_back(std::move(task));
    changed.notify_all();
}

std::shared_ptr<zel::Task> RecordedQueue::take(std::size_t& position) {
    const std::lock_guard lock(mutex);
    if (tasks.empty()) {
        return nullptr;
    }
    auto task = std::move(tasks.front());
    tasks.pop_front();
    position = taken++;
    return task;
}

bool RecordedQueue::wait() {
    std::unique_lock lock(mutex);
    changed.wait(lock, [this] { return closed || !tasks.empty(); });
    return !tasks.empty();
}

void RecordedQueue::close() {
    const std::lock_guard lock(mutex);
    closed = true;
    changed.notify_all();
}

void RecordedQueue::forget() {
    const std::lock_guard lock(mutex);
    entries.clear();
    taken = 0;
}

std::vector<RecordedQueue::Entry> RecordedQueue::getEntries() const {
    const std::lock_guard lock(mutex);
    return entries;
}

} // namespace config_model
