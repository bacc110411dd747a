#pragma once

#include <unified/UnifiedBusinessObjectObserver.h>

#include <ConfigServiceExport.h>

namespace ZelUnified {

/// Follows one configuration record. Held weakly; called on the services dispatcher's thread for each property that
/// changed, when the record has taken over all of them. The order of the operations is contract.
///
/// A callback may read, write, connect and disconnect. It must not wait for another thread, and must not start, stop,
/// refresh or reset the feature set: the chain's lock is held around it when the change was made on this thread.
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
