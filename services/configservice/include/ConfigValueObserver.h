#pragma once

#include <unified/UnifiedBusinessObjectObserver.h>

#include <ConfigServiceExport.h>

namespace ZelUnified {

/// Follows one configuration record.
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
