#pragma once

#include <unified/UnifiedBusinessObjectNotifiers.h>

#include <ConfigServiceExport.h>

namespace ZelUnified {

/// The notifiers of one configuration record. Services dispatcher's thread. The order of the operations is part of the
/// contract.
class LUMORA_CONFIG_API ConfigValueNotifiers : public virtual UnifiedBusinessObjectNotifiers {
public:
    virtual std::shared_ptr<PropertyNotifier> getKeyNotifier() = 0;
    virtual std::shared_ptr<PropertyNotifier> getValueNotifier() = 0;
    virtual std::shared_ptr<PropertyNotifier> getOriginalValueNotifier() = 0;
    virtual std::shared_ptr<PropertyNotifier> getisOverriddenNotifier() = 0;
    virtual std::shared_ptr<PropertyNotifier> getisDefinedNotifier() = 0;
    virtual std::shared_ptr<PropertyNotifier> getValueStoreNameNotifier() = 0;
    virtual std::shared_ptr<PropertyNotifier> getOriginalValueStoreNameNotifier() = 0;
};

} // namespace ZelUnified
