#pragma once

#include <unified/PropertyNotifier.h>

#include <memory>

namespace ZelUnified {

/// The notifiers of an object's properties; each is created on the first request. Call on the services dispatcher's
/// thread.
class LUMORA_HOST_API UnifiedBusinessObjectNotifiers {
public:
    virtual ~UnifiedBusinessObjectNotifiers() = default;
    virtual std::shared_ptr<PropertyNotifier> getGuidNotifier() = 0;
};

} // namespace ZelUnified
