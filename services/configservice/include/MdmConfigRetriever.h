#pragma once

#include <ConfigMap.h>
#include <ConfigServiceExport.h>

namespace ZelUnified {

/// Retrieves the settings from device management; implemented by another service.
class LUMORA_CONFIG_API MdmConfigRetriever {
public:
    virtual ~MdmConfigRetriever() = default;
    /// Returns the settings. Called once, by the store's constructor, on its thread.
    virtual ConfigMap retrieveMdmConfig() = 0;
};

} // namespace ZelUnified
