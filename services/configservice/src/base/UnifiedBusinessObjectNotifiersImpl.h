#pragma once

#include "PropertyNotifierImpl.h"

#include <unified/UnifiedBusinessObjectNotifiers.h>
#include <unified/UnifiedBusinessObjectObserver.h>

#include <memory>

namespace ZelUnified {

/// Base class of every notifier set. A set observes its object and forwards each notification to the notifier of the
/// property, if that notifier was requested. A set holds no pointer to its object. Call on the services dispatcher's
/// thread.
class UnifiedBusinessObjectNotifiersImpl : public virtual UnifiedBusinessObjectNotifiers,
                                           public virtual UnifiedBusinessObjectObserver,
                                           public std::enable_shared_from_this<UnifiedBusinessObjectNotifiersImpl> {
public:
    std::shared_ptr<PropertyNotifier> getGuidNotifier() override;

    void OnGuidChanged() override;
    /// Each class of the hierarchy fires only its own properties.
    void OnInfoChanged() override;

protected:
    /// Returns the notifier in `field`; creates it on the first request.
    static std::shared_ptr<PropertyNotifier> request(std::shared_ptr<PropertyNotifierImpl>& field);
    /// Fires the notifier if it exists. Takes it by value because a callback may destroy the set.
    static void fireIfRequested(std::shared_ptr<PropertyNotifierImpl> notifier);

private:
    std::shared_ptr<PropertyNotifierImpl> guidNotifier;
};

} // namespace ZelUnified
