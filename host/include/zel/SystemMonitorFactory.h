#pragma once

#include <zel/SystemMonitor.h>

#include <memory>

namespace ZelSystemMonitor {

/// Provides the source of power events of the process. Any thread.
class LUMORA_HOST_API SystemMonitorFactory {
public:
    /// Returns the monitor of the process, never null. On a machine without a source of power events the monitor
    /// delivers nothing.
    static std::shared_ptr<SystemMonitor> getInstance();
    /// Replaces the monitor, for embedding programs and tests; null restores the machine's.
    static void overrideInstance(std::shared_ptr<SystemMonitor> monitor);
};

} // namespace ZelSystemMonitor
