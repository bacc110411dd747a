#pragma once

#include <ConfigValueObserver.h>

#include <functional>

namespace example {

/// Observes the value of one record and ignores the other properties.
class ServerObserver final : public ZelUnified::ConfigValueObserver {
public:
    explicit ServerObserver(std::function<void()> valueChanged);

    void OnKeyChanged() override {}
    void OnValueChanged() override;
    void OnOriginalValueChanged() override {}
    void OnisOverriddenChanged() override {}
    void OnisDefinedChanged() override {}
    void OnValueStoreNameChanged() override {}
    void OnOriginalValueStoreNameChanged() override {}

private:
    const std::function<void()> callback;
};

} // namespace example
