#pragma once

#include <unified/UnifiedFactory.h>

#include <ConfigServiceExport.h>

#include <memory>

/// The one entry of the plug-in, called once on the host's loading thread. Files the configuration service with the
/// factory and, unless another plug-in provides it already, the feature set. Starts nothing and catches nothing.
extern "C" LUMORA_CONFIG_API void InjectConfigService(std::shared_ptr<ZelUnified::UnifiedFactory> factory);
