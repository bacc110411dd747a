#pragma once

#include <unified/UnifiedBusinessObject.h>
#include <unified/UnifiedServiceNotifiers.h>
#include <unified/UnifiedServiceObserver.h>

namespace ZelUnified {

#if defined(__clang__)
// The overloads for a derived observer hide the base's on purpose: with both in sight a shared pointer to a client's
// observer would be ambiguous.
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Woverloaded-virtual"
#endif

/// Base of every service's interface.
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
