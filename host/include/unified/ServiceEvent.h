#pragma once

#include <unified/UnifiedBusinessObject.h>

#include <memory>
#include <string>

namespace ZelUnified {

class ServiceEventNotifiers;
class ServiceEventObserver;

#if defined(__clang__)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Woverloaded-virtual" // as in UnifiedService
#endif

/// A coded, translatable message from a service to the user. Start and stop of a feature set pass lists of them; the
/// host does not read their properties.
class LUMORA_HOST_API ServiceEvent : public virtual UnifiedBusinessObject {
public:
    virtual void addObserver(std::weak_ptr<ServiceEventObserver> observer) = 0;
    virtual void removeObserver(std::weak_ptr<ServiceEventObserver> observer) = 0;
    virtual std::shared_ptr<ServiceEventNotifiers> getServiceEventNotifiers() = 0;
    std::string getInterfaceName() override { return "ServiceEvent"; }
};

#if defined(__clang__)
#pragma clang diagnostic pop
#endif

} // namespace ZelUnified
