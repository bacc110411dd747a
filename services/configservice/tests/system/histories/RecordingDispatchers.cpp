#include "RecordingDispatchers.h"

#include <kyr/FunctionTask.h>

#include <Signal.h>

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
