#include "PlatformRegistry.h"

#include <mutex>
#include <utility>

namespace zel::registry {

namespace {

/// The registry shared by the whole process.
class ProcessRegistry {
public:
    std::shared_ptr<Registry> get() {
        const std::lock_guard lock(mutex);
        if (overriding) {
            return overriding;
        }
        if (!platform) {
            platform = makePlatformRegistry();
        }
        return platform;
    }

    void replace(std::shared_ptr<Registry> registry) {
        const std::lock_guard lock(mutex);
        overriding.swap(registry);
    }

private:
    std::mutex mutex;
    std::shared_ptr<Registry> platform;
    std::shared_ptr<Registry> overriding;
};

ProcessRegistry& processRegistry() {
    static ProcessRegistry instance;
    return instance;
}

} // namespace

std::shared_ptr<Registry> getRegistry() {
    return processRegistry().get();
}

void overrideRegistry(std::shared_ptr<Registry> registry) {
    processRegistry().replace(std::move(registry));
}

} // namespace zel::registry
