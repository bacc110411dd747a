#pragma once

#include <unified/UnifiedBusinessObject.h>
#include <unified/UnifiedServiceNotifiers.h>
#include <unified/UnifiedServiceObserver.h>

namespace ZelUnified {

#if defined(__clang__)
// An overload for a derived observer intentionally hides the base's: with both visible, a call with a shared pointer to
// a client's observer would be ambiguous.
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Woverloaded-virtual"
#endif

/// Base class of every service interface.
class LUMORA_HOST_API UnifiedService : public virtual UnifiedBusinessObject {
public:
    virtual void addObserver(std::weak_ptr<UnifiedServiceObserver> observer) = 0;
    virtual void removeObserver(std::weak_ptr<UnifiedServiceObserver> observer) = 0;
    virtual std::shared_ptr<UnifiedServiceNotifiers> getUnifiedServiceNotifiers() = 0;
    virtual bool getBulkUpdateInProgress() = 0;
    std::string getInterfaceName() override { return "UnifiedService"; }
};

#if defined(__clang__)
#pragma clang diagnostic pop
#endif

} // namespace ZelUnified
