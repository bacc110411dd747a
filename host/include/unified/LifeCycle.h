#pragma once

#include <unified/UnifiedBusinessObject.h>

#include <memory>
#include <string>

namespace ZelUnified {

class LifeCycleNotifiers;
class LifeCycleObserver;

#if defined(__clang__)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Woverloaded-virtual" // as in UnifiedService
#endif

/// The stages of the client's session. The headers of other plug-ins refer to it; the host neither provides nor
/// reads one.
class LUMORA_HOST_API LifeCycle : public virtual UnifiedBusinessObject {
public:
    virtual void addObserver(std::weak_ptr<LifeCycleObserver> observer) = 0;
    virtual void removeObserver(std::weak_ptr<LifeCycleObserver> observer) = 0;
    virtual std::shared_ptr<LifeCycleNotifiers> getLifeCycleNotifiers() = 0;
    std::string getInterfaceName() override { return "LifeCycle"; }
};

#if defined(__clang__)
#pragma clang diagnostic pop
#endif

} // namespace ZelUnified
