#pragma once

#include "SharedText.h"

#include <unified/UnifiedBusinessObjectImpl.h>

#include <ConfigValue.h>

#include <memory>
#include <string>

namespace ZelUnified {

#if defined(__clang__)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Woverloaded-virtual" // as in UnifiedService
#endif

/// Holds the properties of a record. Only the owner calls the setters and the fire operations; a setter neither
/// compares nor fires. Call on the services dispatcher's thread, except the constructors and the observer operations.
class ConfigValueBaseImpl : public UnifiedBusinessObjectImpl, public virtual ConfigValue {
public:
    void addObserver(std::weak_ptr<ConfigValueObserver> observer) override;
    void removeObserver(std::weak_ptr<ConfigValueObserver> observer) override;
    std::shared_ptr<ConfigValueNotifiers> getConfigValueNotifiers() override;

    std::wstring getKey() override;
    std::wstring getValue() override;
    std::wstring getOriginalValue() override;
    bool getisOverridden() override;
    bool getisDefined() override;
    std::wstring getValueStoreName() override;
    std::wstring getOriginalValueStoreName() override;

    virtual void setKey(std::wstring text);
    virtual void setValue(std::wstring text);
    virtual void setOriginalValue(std::wstring text);
    virtual void setisOverridden(bool flag);
    virtual void setisDefined(bool flag);
    virtual void setValueStoreName(SharedText text);
    virtual void setOriginalValueStoreName(SharedText text);

    void fireKey();
    void fireValue();
    void fireOriginalValue();
    void fireisOverridden();
    void fireisDefined();
    void fireValueStoreName();
    void fireOriginalValueStoreName();

protected:
    ConfigValueBaseImpl(const std::shared_ptr<UnifiedFactory>& factory, std::wstring recordKey);
    ~ConfigValueBaseImpl() override;

    void initNotifiers() override;

    // The properties. Only constructors write them directly.
    std::wstring Key;
    std::wstring Value;
    std::wstring OriginalValue;
    bool isOverridden = false;
    bool isDefined = false;
    SharedText ValueStoreName;
    SharedText OriginalValueStoreName;
};

#if defined(__clang__)
#pragma clang diagnostic pop
#endif

} // namespace ZelUnified
