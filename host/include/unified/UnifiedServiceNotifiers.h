#pragma once

#include <unified/UnifiedBusinessObjectNotifiers.h>

namespace ZelUnified {

/// The notifiers of a service's own properties.
class LUMORA_HOST_API UnifiedServiceNotifiers : public virtual UnifiedBusinessObjectNotifiers {
public:
    virtual std::shared_ptr<PropertyNotifier> getBulkUpdateInProgressNotifier() = 0;
};

} // namespace ZelUnified
