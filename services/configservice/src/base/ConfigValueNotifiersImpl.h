#pragma once

#include "UnifiedBusinessObjectNotifiersImpl.h"

#include <ConfigValueNotifiers.h>
#include <ConfigValueObserver.h>

namespace ZelUnified {

/// The notifier set of one configuration record.
class ConfigValueNotifiersImpl final : public UnifiedBusinessObjectNotifiersImpl,
                                       public virtual ConfigValueNotifiers,
                                       public virtual ConfigValueObserver {
public:
    std::shared_ptr<PropertyNotifier> getKeyNotifier() override;
    std::shared_ptr<PropertyNotifier> getValueNotifier() override;
    std::shared_ptr<PropertyNotifier> getOriginalValueNotifier() override;
    std::shared_ptr<PropertyNotifier> getisOverriddenNotifier() override;
    std::shared_ptr<PropertyNotifier> getisDefinedNotifier() override;
    std::shared_ptr<PropertyNotifier> getValueStoreNameNotifier() override;
    std::shared_ptr<PropertyNotifier> getOriginalValueStoreNameNotifier() override;

    void OnKeyChanged() override;
    void OnValueChanged() override;
    void OnOriginalValueChanged() override;
    void OnisOverriddenChanged() override;
    void OnisDefinedChanged() override;
    void OnValueStoreNameChanged() override;
    void OnOriginalValueStoreNameChanged() override;
    void OnInfoChanged() override;

private:
    std::shared_ptr<PropertyNotifierImpl> keyNotifier;
    std::shared_ptr<PropertyNotifierImpl> valueNotifier;
    std::shared_ptr<PropertyNotifierImpl> originalValueNotifier;
    std::shared_ptr<PropertyNotifierImpl> isOverriddenNotifier;
    std::shared_ptr<PropertyNotifierImpl> isDefinedNotifier;
    std::shared_ptr<PropertyNotifierImpl> valueStoreNameNotifier;
    std::shared_ptr<PropertyNotifierImpl> originalValueStoreNameNotifier;
};

} // namespace ZelUnified
