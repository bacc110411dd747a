#pragma once

#include "ByteSource.h"
#include "featuresets/adapters/config/ConfigAdapter.h"

#include <unified/UnifiedFactoryImpl.h>

#include <ConfigService.h>
#include <ConfigValueObserver.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace config_model {

/// Runs the service once on real dispatchers, with concurrent threads of every kind of caller, and ends it in the
/// middle of their work. Installs nothing: the caller holds the profile and the registry.
class ServiceUnderStress {
public:
    /// `seed` determines the calls of each thread.
    explicit ServiceUnderStress(std::uint32_t seed);
    ~ServiceUnderStress();
    ServiceUnderStress(const ServiceUnderStress&) = delete;
    ServiceUnderStress& operator=(const ServiceUnderStress&) = delete;

    /// Each thread makes this number of calls. The service is destroyed after half of all calls.
    void live(std::size_t callsOfOneThread);

    /// Returns the violations found.
    std::vector<std::string> getComplaints() const;
    /// Returns the number of calls to observers of records.
    int countReactions() const { return reactions; }
    /// Releases everything. Returns true if that destroyed the service and its feature set.
    bool end();

private:
    class RecordObserver;
    class ArrivalObserver;

    void read(ByteSource& bytes);
    void write(ByteSource& bytes);
    void changeStores(ByteSource& bytes);
    void changeLife(ByteSource& bytes);
    void react();

    void onDispatcher(const std::function<void()>& work);
    void destroyOnce();
    void complain(const std::string& text);

    const std::uint32_t firstSeed;
    std::shared_ptr<ZelUnified::UnifiedFactoryImpl> factory = std::make_shared<ZelUnified::UnifiedFactoryImpl>();
    std::shared_ptr<ZelUnified::ConfigService> service;
    std::shared_ptr<ZelUnified::ConfigAdapter> adapter;
    std::vector<std::shared_ptr<RecordObserver>> recordObservers;
    std::shared_ptr<ArrivalObserver> arrivalObserver;
    std::atomic<int> reactions = 0;
    std::atomic<int> reactionDepth = 0;
    std::atomic<bool> destroyed = false;
    mutable std::mutex complaintsMutex;
    std::vector<std::string> complaints;
};

} // namespace config_model
