#pragma once

#include "UnsyncedFiles.h"
#include "featuresets/adapters/config/ConfigAdapter.h"

#include <unified/UnifiedFactoryImpl.h>

#include <ConfigService.h>
#include <CountedTimers.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace long_life {

/// Runs the whole service on its real dispatchers, timers and files, and repeats what happens to it in a long run.
/// Installs nothing: the caller holds the profile, the registry and the timers.
class ServiceLife {
public:
    explicit ServiceLife(testing_host::CountedTimers& processTimers);
    /// Ends the service.
    ~ServiceLife();
    ServiceLife(const ServiceLife&) = delete;
    ServiceLife& operator=(const ServiceLife&) = delete;

    /// Start, refresh, observers, the arrival of a store, a write and its announcement, the removal of the store, stop;
    /// in some cycles a report, a provisioning link, a pending timer, a reset. Nothing is pending afterwards.
    void playCycle(std::size_t number);

private:
    class RecordObserver;
    class ArrivalObserver;

    void chooseFiles(std::size_t number);
    void letStoreArrive(const std::wstring& value);
    void write(const std::wstring& value);
    void provision(const std::wstring& value);
    void onDispatcher(const std::function<void()>& work);
    void rest();

    testing_host::CountedTimers& timers;
    std::optional<config_model::UnsyncedFiles> files;
    const std::shared_ptr<ZelUnified::UnifiedFactoryImpl> factory = std::make_shared<ZelUnified::UnifiedFactoryImpl>();
    std::shared_ptr<ZelUnified::ConfigService> service;
    std::shared_ptr<ZelUnified::ConfigAdapter> adapter;
};

} // namespace long_life
