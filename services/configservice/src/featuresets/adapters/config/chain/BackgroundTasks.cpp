#include "BackgroundTasks.h"

#include <kyr/FunctionTask.h>

namespace ZelUnified {

void enqueueBackgroundTask(const std::shared_ptr<UnifiedFactory>& factory, std::string name,
                           std::function<void()> work) {
    const auto dispatcher = factory ? factory->getBackgroundDispatcher() : nullptr;
    if (dispatcher) {
        dispatcher->enqueue(std::make_shared<KyrCoreUtils::FunctionTask>(std::move(work), std::move(name)));
    }
}

} // namespace ZelUnified
