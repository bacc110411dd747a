#pragma once

#include "FleetServiceImpl.h"

#include <registry/Registry.h>
#include <unified/UnifiedFactoryImpl.h>

#include <ConfigFeatureSet.h>
#include <ConfigService.h>
#include <ConfigValueObserver.h>
#include <FleetAdministration.h>

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>

namespace fleet_test {

/// A client: the host with the plug-in of the configuration service, and this service with short times, on the profile
/// of the process. The settings of the fleet are in the defaults file.
class FleetHost {
public:
    using Rows = std::map<std::string, std::string>;
    using ServiceMaker = std::function<std::shared_ptr<fleet::FleetServiceImpl>(
        std::shared_ptr<ZelUnified::UnifiedFactory> factory, std::shared_ptr<zel::registry::Registry> administrators)>;

    /// The resources of the profile receive a defaults file with `Theme`, this access if there are endpoints, and other
    /// rows, which replace those.
    static void writeDefaults(const std::filesystem::path& resources, const ZelUnified::FleetAccess& access,
                              const Rows& others = {});

    /// The administrators' policies are in `administrator`, the folder that is in /etc otherwise.
    explicit FleetHost(const std::filesystem::path& administrator = "/nonexistent",
                       const ServiceMaker& makeService = &FleetHost::makeService);
    ~FleetHost();
    FleetHost(const FleetHost&) = delete;
    FleetHost& operator=(const FleetHost&) = delete;

    /// Runs `work` on the services thread and waits for it.
    void onServices(const std::function<void()>& work) const;
    /// Waits until the service has seen the stores that the chain has added so far.
    void waitForReview() const;
    /// Waits until the record of the key has the value. Returns false on timeout.
    bool waitForValue(const std::wstring& key, const std::wstring& value) const;
    std::wstring getValue(const std::wstring& key) const;
    std::wstring getStoreOf(const std::wstring& key) const;

    ZelUnified::UnifiedFactoryImpl& getFactory() const { return *factory; }
    ZelUnified::ConfigFeatureSet& getConfiguration() const { return *configuration; }
    fleet::FleetServiceImpl& getFleet() const { return *service; }
    static std::shared_ptr<fleet::FleetServiceImpl> makeService(std::shared_ptr<ZelUnified::UnifiedFactory> factory,
                                                                std::shared_ptr<zel::registry::Registry> registry);
    ZelUnified::ConfigService& getRecords() const { return *records; }

private:
    std::shared_ptr<ZelUnified::UnifiedFactoryImpl> factory;
    std::shared_ptr<ZelUnified::ConfigService> records;
    std::shared_ptr<ZelUnified::ConfigFeatureSet> configuration;
    std::shared_ptr<fleet::FleetServiceImpl> service;
};

} // namespace fleet_test
