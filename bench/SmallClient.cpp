#include "SmallClient.h"

#include "RowSuite.h"
#include "services/impl/entry/InjectConfigService.h"

#include <kyr/StringUtils.h>

#include <CacheConfigStore.h>
#include <ConfigServiceIds.h>
#include <ConfigValue.h>
#include <DefaultsFile.h>
#include <LocalFileConfigStore.h>

#include <string>

namespace bench {

using namespace ZelUnified;

namespace {

// The layers of the workload, the first of which wins.
constexpr std::size_t policyLayer = 1;
constexpr std::size_t firstDocument = 2;
constexpr std::size_t lastDocument = 3;
constexpr int firstPriority = 100;

std::string nameOf(std::size_t document) {
    return "Document" + std::to_string(document);
}

int priorityOf(std::size_t document) {
    return firstPriority + static_cast<int>(document);
}

} // namespace

SmallProfile::SmallProfile() {
    writeUserFile();
    writePolicy();
    writeDocument(firstDocument);
    writeDocument(lastDocument);
    writeDefaults();
    SmallClient client;
    for (const auto& [key, value] : workload.getHits()) {
        require(client.service().getConfig(key)->getValue() == value, "a record of the small client");
    }
}

std::shared_ptr<XmlConfigStore> SmallProfile::deliverDocument(const std::wstring& suffix) const {
    auto store = std::make_shared<XmlConfigStore>(nameOf(firstDocument), priorityOf(firstDocument), true, false,
                                                  std::string(), false);
    for (const auto& [key, value] : workload.getLayers()[firstDocument]) {
        store->storeValue(key, value + suffix);
    }
    return store;
}

void SmallProfile::writeUserFile() const {
    LocalFileConfigStore store("LocalFileConfigStore", 20, false);
    for (const auto& [key, value] : getUserLayer()) {
        store.storeValue(key, value);
    }
    store.persistValues();
}

void SmallProfile::writePolicy() const {
    std::wstring text = L"Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\Software\\Policies"
                        L"\\Ventrix Systems, Inc.\\Unified Communications\\VentrixUC]\r\n";
    for (const auto& [key, value] : workload.getLayers()[policyLayer]) {
        text += L"\"" + key + L"\"=\"" + value + L"\"\r\n";
    }
    testing_host::writeFile(profile.data() / "registry" / "policy.reg", KyrCoreUtils::toString(text));
}

void SmallProfile::writeDocument(std::size_t number) const {
    auto values = workload.getLayers()[number];
    const auto path = profile.config() / "Cache" / ("cached" + nameOf(number) + ".dat");
    const CacheConfigStore writer(nameOf(number), priorityOf(number), path.string(), values);
}

void SmallProfile::writeDefaults() const {
    std::string copies;
    for (const auto number : {firstDocument, lastDocument}) {
        copies += nameOf(number) + ":" + std::to_string(priorityOf(number)) + ";";
    }
    testing_host::DefaultsFile file;
    file.add("PrimaryConfigStores", copies);
    for (const auto& [key, value] : workload.getLayers().back()) {
        file.add(key, value);
    }
    file.write(profile.resources());
}

SmallClient::SmallClient() {
    InjectConfigService(factory);
    factory->StartFeatureSet(configServiceId, nullptr);
    configService = factory->getServiceByType<ConfigService>();
    configFeatureSet = factory->getFeatureSetByType<ConfigFeatureSet>();
}

SmallClient::~SmallClient() {
    configService.reset();
    configFeatureSet.reset();
    factory->Destroy();
}

} // namespace bench
