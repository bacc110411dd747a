#include "FleetHost.h"

#include "FollowedCluster.h"

#include <kyr/FunctionTask.h>
#include <kyr/StringUtils.h>
#include <registry/RegistryFiles.h>
#include <unified/TypeName.h>

#include <ConfigServiceIds.h>
#include <ConfigValueNotifiers.h>
#include <DefaultsFile.h>
#include <Signal.h>

#include <utility>

namespace fleet_test {

namespace {

std::string join(const std::vector<std::string>& parts) {
    std::string text;
    for (const auto& part : parts) {
        text += (text.empty() ? "" : ",") + part;
    }
    return text;
}

} // namespace

void FleetHost::writeDefaults(const std::filesystem::path& resources, const ZelUnified::FleetAccess& access,
                              const Rows& others) {
    auto rows = others;
    rows.insert({{"Theme", "default"}, {"FleetUser", "ada"}, {"FleetGroups", "nurses, night shift"}});
    if (!access.endpoints.empty()) {
        rows.insert({{"FleetEndpoints", join(access.endpoints)},
                     {"FleetPlainHttpAllowed", access.plainHttpAllowed ? "true" : "false"},
                     {"FleetCertificateAuthority", access.authority},
                     {"FleetConnectionUsername", access.username},
                     {"FleetConnectionPassword", access.password.view()}});
    }
    testing_host::writeDefaults(resources, rows);
}

std::shared_ptr<fleet::FleetServiceImpl> FleetHost::makeService(std::shared_ptr<ZelUnified::UnifiedFactory> factory,
                                                                std::shared_ptr<zel::registry::Registry> registry) {
    return std::make_shared<fleet::FleetServiceImpl>(std::move(factory), shortTimes(), std::move(registry));
}

FleetHost::FleetHost(const std::filesystem::path& administrator, const ServiceMaker& makeService) {
    zel::registry::overrideRegistry(zel::registry::makeFileRegistry({administrator.string(), {}}));
    ZelUnified::UnifiedFactoryOptions options;
    options.openedForWriting = true;
    options.pluginFolder = PLUGIN_FOLDER;
    options.plugins = {{ZelUnified::readableTypeName<ZelUnified::ConfigService>(), SERVICE_LIBRARY},
                       {ZelUnified::readableTypeName<ZelUnified::ConfigFeatureSet>(), SERVICE_LIBRARY}};
    factory = std::make_shared<ZelUnified::UnifiedFactoryImpl>(std::move(options));
    factory->Init();
    onServices([this] {
        records = factory->getServiceByType<ZelUnified::ConfigService>();
        configuration = factory->getFeatureSetByType<ZelUnified::ConfigFeatureSet>();
    });
    factory->StartFeatureSet(ZelUnified::configServiceId, nullptr);
    service = makeService(
        factory, zel::registry::makeFileRegistry({.administrator = administrator.string(), .readsUserFiles = false}));
    factory->getFeatureSets().registerItem<ZelUnified::FleetService>(ZelUnified::FleetService::fleetServiceId, service);
    factory->StartFeatureSet(ZelUnified::FleetService::fleetServiceId, nullptr);
    onServices([] {}); // the start has posted a task that reads the settings
}

FleetHost::~FleetHost() {
    factory->Destroy();
    zel::registry::overrideRegistry(nullptr);
}

void FleetHost::onServices(const std::function<void()>& work) const {
    factory->getServicesDispatcher()->enqueueBlock(std::make_shared<KyrCoreUtils::FunctionTask>(work, "test"), false);
}

void FleetHost::waitForReview() const {
    // The chain announces a store on the background thread, from where the service posts to the services thread.
    factory->flushBackgroundDispatcher();
    onServices([] {});
}

bool FleetHost::waitForValue(const std::wstring& key, const std::wstring& value) const {
    const auto reached = std::make_shared<testing_host::Signal>();
    onServices([&] {
        const auto record = records->getConfig(key);
        const auto check = [weak = std::weak_ptr(record), value, reached] {
            if (const auto live = weak.lock(); live && live->getValue() == value) {
                reached->set();
            }
        };
        record->getConfigValueNotifiers()->getValueNotifier()->connect(check);
        check();
    });
    return reached->wait();
}

std::wstring FleetHost::getValue(const std::wstring& key) const {
    std::wstring value;
    onServices([&] { value = records->getConfig(key)->getValue(); });
    return value;
}

std::wstring FleetHost::getStoreOf(const std::wstring& key) const {
    std::wstring store;
    onServices([&] { store = records->getConfig(key)->getValueStoreName(); });
    return store;
}

} // namespace fleet_test
