#pragma once

#include <unified/UnifiedFactory.h>

#include <functional>
#include <memory>
#include <string>

namespace ZelUnified {

/// Posts named work to the background dispatcher, which is asked for anew each time. Without a factory or a dispatcher,
/// as after the host's end, the work is dropped.
void enqueueBackgroundTask(const std::shared_ptr<UnifiedFactory>& factory, std::string name,
                           std::function<void()> work);

} // namespace ZelUnified
