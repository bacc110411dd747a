#pragma once

#include <unified/SystemService.h>
#include <unified/SystemServiceObserver.h>
#include <unified/UnifiedFactory.h>

#include <memory>
#include <tuple>
#include <vector>

namespace ZelUnified {

/// Records the registered reset callbacks.
class RecordingCallbackRegistry final : public ResetDataCallbackRegistry {
public:
    void add(int order, std::shared_ptr<ProviderResetDataCallback> callback) override {
        orders.push_back(order);
        added.push_back(std::move(callback));
    }
    void remove(int, std::shared_ptr<ProviderResetDataCallback>) override {}

    std::vector<int> orders;
    std::vector<std::shared_ptr<ProviderResetDataCallback>> added;
};

#if defined(__clang__)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Woverloaded-virtual" // as in UnifiedService
#endif

/// The host's service with the operations that the adapter uses.
class FakeSystemService final : public SystemService {
public:
    using Event = std::tuple<int, int, ServiceEventSeverityEnum::ServiceEventSeverity>;

    void addObserver(std::weak_ptr<UnifiedBusinessObjectObserver>) override {}
    void removeObserver(std::weak_ptr<UnifiedBusinessObjectObserver>) override {}
    void addObserver(std::weak_ptr<UnifiedServiceObserver>) override {}
    void removeObserver(std::weak_ptr<UnifiedServiceObserver>) override {}
    void addObserver(std::weak_ptr<SystemServiceObserver>) override {}
    void removeObserver(std::weak_ptr<SystemServiceObserver>) override {}
    std::shared_ptr<UnifiedBusinessObjectNotifiers> getUnifiedBusinessObjectNotifiers() override { return nullptr; }
    std::shared_ptr<UnifiedServiceNotifiers> getUnifiedServiceNotifiers() override { return nullptr; }
    std::shared_ptr<SystemServiceNotifiers> getSystemServiceNotifiers() override { return nullptr; }
    bool getBulkUpdateInProgress() override { return false; }
    std::string getGuid() override { return ""; }
    std::string toString() override { return "FakeSystemService"; }
    std::shared_ptr<ResetDataCallbackRegistry> getResetDataCallbackRegistry() override { return callbacks; }
    void addServiceEvent(int code, int eventId, ServiceEventSeverityEnum::ServiceEventSeverity severity) override {
        events.emplace_back(code, eventId, severity);
    }

    const std::shared_ptr<RecordingCallbackRegistry> callbacks = std::make_shared<RecordingCallbackRegistry>();
    std::vector<Event> events;
};

#if defined(__clang__)
#pragma clang diagnostic pop
#endif

inline std::shared_ptr<FakeSystemService> fileSystemService(UnifiedFactory& factory) {
    auto service = std::make_shared<FakeSystemService>();
    factory.getServices().registerItem<SystemService>(1, service);
    return service;
}

} // namespace ZelUnified
