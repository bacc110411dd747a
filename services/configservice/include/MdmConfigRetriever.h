#pragma once

#include <ConfigMap.h>
#include <ConfigServiceExport.h>

namespace ZelUnified {

/// Another service's source of the settings that device management pushes.
class LUMORA_CONFIG_API MdmConfigRetriever {
public:
    virtual ~MdmConfigRetriever() = default;
    /// Called once, by the constructor of the store, on its thread.
    virtual ConfigMap retrieveMdmConfig() = 0;
};

} // namespace ZelUnified
