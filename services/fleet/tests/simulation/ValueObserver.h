#pragma once

#include <ConfigValue.h>
#include <ConfigValueObserver.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace fleet_test {

/// Observes the value of a record, and counts its calls. Services thread. The record holds a weak reference.
class ValueObserver final : public ZelUnified::ConfigValueObserver {
public:
    using Listener = std::function<void(const std::wstring& value)>;

    /// `listener` receives the value at each call; it may be null.
    static std::shared_ptr<ValueObserver> observe(const std::shared_ptr<ZelUnified::ConfigValue>& record,
                                                  Listener listener) {
        auto observer = std::make_shared<ValueObserver>(record, std::move(listener));
        record->addObserver(std::weak_ptr<ZelUnified::ConfigValueObserver>(observer));
        return observer;
    }

    ValueObserver(std::shared_ptr<ZelUnified::ConfigValue> observed, Listener valueListener)
        : record(std::move(observed)), listener(std::move(valueListener)), last(record->getValue()) {}

    void OnKeyChanged() override {}
    void OnValueChanged() override {
        auto value = record->getValue();
        ++calls;
        if (value == last) {
            ++repeated;
        }
        last = std::move(value);
        if (listener) {
            listener(last);
        }
    }
    void OnOriginalValueChanged() override {}
    void OnisOverriddenChanged() override {}
    void OnisDefinedChanged() override {}
    void OnValueStoreNameChanged() override {}
    void OnOriginalValueStoreNameChanged() override {}

    std::size_t countCalls() const { return calls; }
    /// Returns how many calls came with the same value as the call before.
    std::size_t countRepeated() const { return repeated; }

private:
    const std::shared_ptr<ZelUnified::ConfigValue> record;
    const Listener listener;
    std::wstring last;
    std::size_t calls = 0;
    std::size_t repeated = 0;
};

} // namespace fleet_test
