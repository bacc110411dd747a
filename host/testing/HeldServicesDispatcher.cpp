#include "HeldServicesDispatcher.h"

#include <utility>

namespace testing_host {

bool HeldServicesDispatcher::checkForUpdateAccess() const {
    return owner.load() == std::this_thread::get_id();
}

void HeldServicesDispatcher::enqueue(std::shared_ptr<zel::Task> task, bool ahead) {
    tasks.add(std::move(task), ahead);
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

void HeldServicesDispatcher::runAll() {
    claim();
    tasks.runAll();
}

} // namespace testing_host
