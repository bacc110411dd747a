#pragma once

#include <ConfigValueObserver.h>

#include <functional>
#include <string>
#include <utility>

namespace config_model {

/// Calls a function with the name of each property that a record fires.
class RecordObserver final : public ZelUnified::ConfigValueObserver {
public:
    using Callback = std::function<void(const std::string& property)>;

    explicit RecordObserver(Callback function) : fired(std::move(function)) {}

    void OnKeyChanged() override { fired("Key"); }
    void OnValueChanged() override { fired("Value"); }
    void OnOriginalValueChanged() override { fired("OriginalValue"); }
    void OnisOverriddenChanged() override { fired("isOverridden"); }
    void OnisDefinedChanged() override { fired("isDefined"); }
    void OnValueStoreNameChanged() override { fired("ValueStoreName"); }
    void OnOriginalValueStoreNameChanged() override { fired("OriginalValueStoreName"); }

private:
    const Callback fired;
};

} // namespace config_model
