#pragma once

#include <ConfigValueObserver.h>

#include <functional>

namespace example {

/// Follows the value of one record; the other properties are of no interest here.
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
