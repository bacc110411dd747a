#pragma once

#include <unified/UnifiedServiceNotifiers.h>

#include <ConfigServiceExport.h>

namespace ZelUnified {

/// The notifiers of the configuration service. Services dispatcher's thread.
class LUMORA_CONFIG_API ConfigServiceNotifiers : public virtual UnifiedBusinessObjectNotifiers,
                                                 public virtual UnifiedServiceNotifiers {
public:
    virtual std::shared_ptr<PropertyNotifier> getConfigReadyNotifier() = 0;
};

} // namespace ZelUnified
