#pragma once

#include <zel/HostExport.h>

namespace ZelUnified {

/// Base of every feature set's interface.
class LUMORA_HOST_API FeatureSet {
public:
    virtual ~FeatureSet() = default;
};

} // namespace ZelUnified
