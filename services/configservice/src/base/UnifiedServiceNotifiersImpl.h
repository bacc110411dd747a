#pragma once

#include "UnifiedBusinessObjectNotifiersImpl.h"

#include <unified/UnifiedServiceNotifiers.h>
#include <unified/UnifiedServiceObserver.h>

namespace ZelUnified {

/// The notifier set of a service.
class UnifiedServiceNotifiersImpl : public UnifiedBusinessObjectNotifiersImpl,
                                    public virtual UnifiedServiceNotifiers,
                                    public virtual UnifiedServiceObserver {
public:
    std::shared_ptr<PropertyNotifier> getBulkUpdateInProgressNotifier() override;

    void OnBulkUpdateInProgressChanged() override;
    void OnInfoChanged() override;

private:
    std::shared_ptr<PropertyNotifierImpl> bulkUpdateInProgressNotifier;
};

} // namespace ZelUnified
