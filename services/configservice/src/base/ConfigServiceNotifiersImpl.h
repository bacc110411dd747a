#pragma once

#include "UnifiedServiceNotifiersImpl.h"

#include <ConfigServiceNotifiers.h>
#include <ConfigServiceObserver.h>

namespace ZelUnified {

/// The notifier set of the configuration service.
class ConfigServiceNotifiersImpl final : public UnifiedServiceNotifiersImpl,
                                         public virtual ConfigServiceNotifiers,
                                         public virtual ConfigServiceObserver {
public:
    std::shared_ptr<PropertyNotifier> getConfigReadyNotifier() override;

    void OnConfigReadyChanged() override;
    void OnInfoChanged() override;

private:
    std::shared_ptr<PropertyNotifierImpl> configReadyNotifier;
};

} // namespace ZelUnified
