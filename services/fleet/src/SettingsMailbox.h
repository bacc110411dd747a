#pragma once

#include <kyr/AnnotatedMutex.h>
#include <kyr/LockGuard.h>

#include <ConfigMap.h>

#include <optional>
#include <utility>

namespace fleet {

/// Holds the latest settings until the services thread takes them, so that those that arrive meanwhile become one
/// update. Any thread.
class SettingsMailbox {
public:
    /// Replaces the settings. Returns true if the caller must post the task that takes them.
    bool put(ZelUnified::ConfigMap settings) {
        const KyrCoreUtils::LockGuard lock(mutex);
        const bool isFirst = !latest.has_value();
        latest = std::move(settings);
        return isFirst;
    }

    /// Returns nothing if they have been taken already.
    std::optional<ZelUnified::ConfigMap> extract() {
        const KyrCoreUtils::LockGuard lock(mutex);
        return std::exchange(latest, std::nullopt);
    }

private:
    KyrCoreUtils::AnnotatedMutex<> mutex;
    std::optional<ZelUnified::ConfigMap> latest LUMORA_GUARDED_BY(mutex);
};

} // namespace fleet
