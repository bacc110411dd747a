#pragma once

#include "PropertyNotifierImpl.h"

#include <unified/UnifiedBusinessObjectNotifiers.h>
#include <unified/UnifiedBusinessObjectObserver.h>

#include <memory>

namespace ZelUnified {

/// Base of every notifier set: an observer of its object that passes each notification on to the property's notifier,
/// if anyone asked for that. A set knows nothing of its object. Services dispatcher's thread.
class UnifiedBusinessObjectNotifiersImpl : public virtual UnifiedBusinessObjectNotifiers,
                                           public virtual UnifiedBusinessObjectObserver,
                                           public std::enable_shared_from_this<UnifiedBusinessObjectNotifiersImpl> {
public:
    std::shared_ptr<PropertyNotifier> getGuidNotifier() override;

    void OnGuidChanged() override;
    /// Each class of the hierarchy fires its own properties only.
    void OnInfoChanged() override;

protected:
    /// The notifier in `field`, made at the first request.
    static std::shared_ptr<PropertyNotifier> request(std::shared_ptr<PropertyNotifierImpl>& field);
    /// Fires the notifier, if it was ever requested. By value: a callback may destroy the set.
    static void fireIfRequested(std::shared_ptr<PropertyNotifierImpl> notifier);

private:
    std::shared_ptr<PropertyNotifierImpl> guidNotifier;
};

} // namespace ZelUnified
