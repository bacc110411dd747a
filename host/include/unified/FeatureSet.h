#pragma once

#include <zel/HostExport.h>

namespace ZelUnified {

/// Base class of every feature set interface.
class LUMORA_HOST_API FeatureSet {
public:
    virtual ~FeatureSet() = default;
};

} // namespace ZelUnified
