#pragma once

#include <zel/SystemMonitor.h>

#include <memory>

namespace ZelSystemMonitor {

/// Where the process's power events come from. Any thread.
class LUMORA_HOST_API SystemMonitorFactory {
public:
    /// The process's monitor; never empty. On a machine without a source of power events it delivers nothing.
    static std::shared_ptr<SystemMonitor> getInstance();
    /// Puts another monitor in its place, for embedding programs and tests; empty brings the machine's back.
    static void overrideInstance(std::shared_ptr<SystemMonitor> monitor);
};

} // namespace ZelSystemMonitor
