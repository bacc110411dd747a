#pragma once

#include "base/ConfigServiceBaseImpl.h"
#include "base/ConfigValueBaseImpl.h"

#include <RecordingFactory.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace configservice_test {

/// Records which property was announced, and may react to it.
class RecordingValueObserver final : public ZelUnified::ConfigValueObserver {
public:
    void OnKeyChanged() override { hear("Key"); }
    void OnValueChanged() override { hear("Value"); }
    void OnOriginalValueChanged() override { hear("OriginalValue"); }
    void OnisOverriddenChanged() override { hear("isOverridden"); }
    void OnisDefinedChanged() override { hear("isDefined"); }
    void OnValueStoreNameChanged() override { hear("ValueStoreName"); }
    void OnOriginalValueStoreNameChanged() override { hear("OriginalValueStoreName"); }

    std::vector<std::string> received;
    std::function<void(const std::string& property)> reaction;

private:
    void hear(const std::string& property) {
        received.push_back(property);
        if (reaction) {
            reaction(property);
        }
    }
};

/// Counts the announcements of a service.
class RecordingServiceObserver final : public ZelUnified::ConfigServiceObserver {
public:
    void OnBulkUpdateInProgressChanged() override { ++bulkUpdateChanges; }
    void OnConfigReadyChanged() override {
        ++readyChanges;
        if (reaction) {
            reaction();
        }
    }

    int bulkUpdateChanges = 0;
    int readyChanges = 0;
    std::function<void()> reaction;
};

/// The base class of a record, with operations that do nothing.
class RecordWithoutOperations : public ZelUnified::ConfigValueBaseImpl {
public:
    RecordWithoutOperations(const std::shared_ptr<ZelUnified::UnifiedFactory>& factory, std::wstring recordKey)
        : ConfigValueBaseImpl(factory, std::move(recordKey)) {}

    void storeValueAndNotify(std::wstring) override {}
    bool isValueEqual(std::wstring) override { return false; }
    void resetToDefault() override {}
    bool differsFromOriginal() override { return false; }
};

/// A record with the base class only.
class PlainRecord final : public RecordWithoutOperations {
public:
    using RecordWithoutOperations::RecordWithoutOperations;
};

/// A service with only the properties that all services share.
class PlainService final : public ZelUnified::UnifiedServiceImpl {
public:
    explicit PlainService(const std::shared_ptr<ZelUnified::UnifiedFactory>& factory)
        : UnifiedServiceImpl(factory, "PlainService") {}
    PlainService(const std::shared_ptr<ZelUnified::UnifiedFactory>& factory, bool enforceUpdateAccess)
        : UnifiedServiceImpl(factory, enforceUpdateAccess, "PlainService") {}

    using UnifiedServiceImpl::commitToServicesDispatcher;
    using UnifiedServiceImpl::getClassName;
    using UnifiedServiceImpl::setBulkUpdateInProgress;
};

} // namespace configservice_test
