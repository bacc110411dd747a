#pragma once

#include <unified/UnifiedFactory.h>

#include <functional>
#include <memory>
#include <string>

namespace ZelUnified {

/// Posts a named task to the background dispatcher, which is looked up for each call. Without a factory or a
/// dispatcher, as after the host has ended, the task is dropped.
void enqueueBackgroundTask(const std::shared_ptr<UnifiedFactory>& factory, std::string name,
                           std::function<void()> work);

} // namespace ZelUnified
