#include "PlatformRegistry.h"

#include <kyr/AnnotatedMutex.h>
#include <kyr/LockGuard.h>

#include <utility>

namespace zel::registry {

namespace {

/// The registry shared by the whole process.
class ProcessRegistry {
public:
    std::shared_ptr<Registry> get() {
        const KyrCoreUtils::LockGuard lock(mutex);
        if (overriding) {
            return overriding;
        }
        if (!platform) {
            platform = makePlatformRegistry();
        }
        return platform;
    }

    void replace(std::shared_ptr<Registry> registry) {
        const KyrCoreUtils::LockGuard lock(mutex);
        overriding.swap(registry);
    }

private:
    KyrCoreUtils::AnnotatedMutex<> mutex;
    std::shared_ptr<Registry> platform LUMORA_GUARDED_BY(mutex);
    std::shared_ptr<Registry> overriding LUMORA_GUARDED_BY(mutex);
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
