#include "InspectedClient.h"

#include "RowSuite.h"

#include <kyr/FunctionTask.h>
#include <unified/TypeName.h>

#include <ConfigServiceIds.h>
#include <DefaultsFile.h>

#include <cstddef>
#include <filesystem>
#include <string>
#include <utility>

namespace bench {

using namespace ZelUnified;

namespace {

constexpr std::size_t keyCount = 5000;

void writeDefaults(const std::filesystem::path& resources) {
    testing_host::DefaultsFile file;
    for (std::size_t i = 0; i < keyCount; ++i) {
        file.add("Key" + std::to_string(i), "value" + std::to_string(i));
    }
    file.write(resources);
}

} // namespace

InspectedClient::InspectedClient(Inspection inspected) {
    writeDefaults(profile.resources());
    UnifiedFactoryOptions options;
    options.pluginFolder = PLUGIN_FOLDER;
    options.plugins = {{readableTypeName<ConfigService>(), SERVICE_LIBRARY},
                       {readableTypeName<ConfigFeatureSet>(), SERVICE_LIBRARY},
                       {readableTypeName<InspectionService>(), INSPECTION_LIBRARY}};
    factory = std::make_shared<UnifiedFactoryImpl>(std::move(options));
    factory->Init();
    featureSet = factory->getFeatureSetByType<ConfigFeatureSet>();
    require(featureSet != nullptr, "the plug-in loaded");
    factory->StartFeatureSet(configServiceId, nullptr);
    if (inspected == Inspection::With) {
        inspection = factory->getFeatureSetByType<InspectionService>();
        require(inspection != nullptr, "the inspection plug-in loaded");
        factory->StartFeatureSet(InspectionService::inspectionServiceId, nullptr);
    }
    run([] {});
}

InspectedClient::~InspectedClient() {
    featureSet.reset();
    inspection.reset();
    factory->Destroy();
}

void InspectedClient::post(std::function<void()> work) const {
    factory->getServicesDispatcher()->enqueue(std::make_shared<KyrCoreUtils::FunctionTask>(std::move(work), "bench"),
                                              false);
}

void InspectedClient::run(std::function<void()> work) const {
    factory->getServicesDispatcher()->enqueueBlock(
        std::make_shared<KyrCoreUtils::FunctionTask>(std::move(work), "bench"), false);
}

void InspectedClient::writePolicy(const std::string& key, const std::string& value) const {
    testing_host::writeFile(profile.data() / "registry" / "policy.reg",
                            "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\Software\\Policies"
                            "\\Ventrix Systems, Inc.\\Unified Communications\\VentrixUC]\r\n\"" +
                                key + "\"=\"" + value + "\"\r\n");
}

} // namespace bench
