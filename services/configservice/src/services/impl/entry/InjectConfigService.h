#pragma once

#include <unified/UnifiedFactory.h>

#include <ConfigServiceExport.h>

#include <memory>

/// The only entry point of the plug-in, called once on the host's loading thread. Registers the configuration service
/// with the factory and, unless another plug-in already provides it, the feature set. Starts nothing and catches no
/// exception.
extern "C" LUMORA_CONFIG_API void InjectConfigService(std::shared_ptr<ZelUnified::UnifiedFactory> factory);
