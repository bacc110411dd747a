#pragma once

#include "History.h"
#include "HistoryFactory.h"
#include "RecordObserver.h"
#include "featuresets/adapters/config/ConfigAdapter.h"

#include <ConfigService.h>
#include <InMemoryRegistry.h>
#include <ManualClock.h>
#include <TemporaryProfile.h>

#include <cstddef>
#include <latch>
#include <memory>
#include <string>
#include <vector>

namespace config_model {

/// The product's service on a new profile, called by several threads. The calling thread is the services dispatcher's.
/// Only one object at a time.
class ConcurrentService {
public:
    explicit ConcurrentService(const Pairs& policy);
    ~ConcurrentService();
    ConcurrentService(const ConcurrentService&) = delete;
    ConcurrentService& operator=(const ConcurrentService&) = delete;

    /// Makes the calls of the script and records them. Call once.
    History run(const Script& script);
    /// Returns the keys whose record differs from the lookup, of those for which they must be equal.
    std::vector<std::string> findStaleRecords();

private:
    class ArrivalObserver;

    void observeRecords();
    void runScript(const Script& script);
    void runOtherThread(std::size_t thread, const std::vector<Call>& calls);
    void runServicesThread(const std::vector<Call>& calls);
    bool runOnePosted();
    bool runOneBackground(std::size_t thread);
    void performAndRecord(std::size_t thread, const Call& call);
    std::string perform(const Call& call);
    std::string performLifecycle(const Call& call);
    std::string readRecord(const std::wstring& key);
    std::string lookUp(const std::wstring& key, bool skipLocal);
    std::string report();
    std::vector<Posted> assignToEvents(const std::vector<Event>& events, const RecordedQueue& queue) const;
    std::vector<std::string> describeEnd();

    const testing_host::TemporaryProfile profile;
    const testing_host::ManualClock timers; ///< Never advanced, so no backup is written.
    testing_host::InMemoryRegistry::Installed registry;
    HistoryClock clock = 0;
    const std::shared_ptr<HistoryFactory> factory = std::make_shared<HistoryFactory>(clock);
    std::shared_ptr<ZelUnified::ConfigAdapter> adapter;
    std::shared_ptr<ZelUnified::ConfigService> service;
    std::vector<std::shared_ptr<RecordObserver>> recordObservers;
    std::vector<std::shared_ptr<ArrivalObserver>> arrivalObservers;
    /// What each thread has recorded. Only the thread itself writes to its element.
    std::vector<std::vector<Event>> recorded;
    std::vector<std::thread::id> threadIds;
    std::vector<std::string> fired;    ///< Services thread.
    std::vector<std::string> arrivals; ///< Background thread.
};

} // namespace config_model
