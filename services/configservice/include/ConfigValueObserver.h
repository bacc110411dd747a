#pragma once

#include <unified/UnifiedBusinessObjectObserver.h>

#include <ConfigServiceExport.h>

namespace ZelUnified {

/// Observes one configuration record. The record holds a weak reference. It calls the observer on the services
/// dispatcher's thread, once for each property that changed, after it has updated all of them. The order of the
/// operations is part of the contract.
///
/// A callback may read, write, connect and disconnect. It must not wait for another thread, and must not start, stop,
/// refresh or reset the feature set, nor call IsFeatureSetStarted(): if the change was made on this thread, the chain's
/// lock is held during the callback.
class LUMORA_CONFIG_API ConfigValueObserver : public virtual UnifiedBusinessObjectObserver {
public:
    virtual void OnKeyChanged() = 0;
    virtual void OnValueChanged() = 0;
    virtual void OnOriginalValueChanged() = 0;
    virtual void OnisOverriddenChanged() = 0;
    virtual void OnisDefinedChanged() = 0;
    virtual void OnValueStoreNameChanged() = 0;
    virtual void OnOriginalValueStoreNameChanged() = 0;
    std::string getInterfaceName() override { return "ConfigValueObserver"; }
};

} // namespace ZelUnified
