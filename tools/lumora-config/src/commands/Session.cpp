#include "Session.h"

#include "output/Failure.h"
#include "stores/ForeignXmlStore.h"
#include "stores/XmlSettings.h"

#include <BootstrapStoreFactory.h>
#include <ConfigKeys.h>

#include <utility>

namespace lumora_config {

Session::Session(ConfigHost& configHost, Printer& target, bool showSecrets)
    : host(configHost), printer(target), mask(configHost.getFeatureSet(), showSecrets), disk(configHost) {
    host.onServices("lumora-config: inspect",
                    [this] { chain = std::make_unique<ChainInspector>(host.getFeatureSet(), host.getService()); });
}

Session::~Session() {
    host.onServices("lumora-config: end session", [this] {
        watchers.clear();
        chain.reset();
    });
}

void Session::addStore(const std::shared_ptr<ZelUnified::ConfigStore>& store) {
    host.onServices("lumora-config: add store", [&] {
        chain->expectStore(store->getName());
        host.getFeatureSet()->addConfigStore(store);
    });
}

std::shared_ptr<ZelUnified::ConfigStore> Session::addForeignStore(const StoreSpec& spec) {
    const auto store = std::make_shared<ForeignXmlStore>(spec);
    host.onServices("lumora-config: sensitive keys", [&] {
        for (const auto& key : store->getSensitiveKeys()) {
            host.getService()->setKeySensitive(key);
        }
    });
    addStore(store);
    arrivals.add(store, StoreArrivals::Kind::Document, spec.file);
    return store;
}

void Session::recordArrival(const std::string& storeName, StoreArrivals::Kind kind, const std::string& file) {
    arrivals.add(host.getFeatureSet()->getConfigStoreByName(storeName), kind, file);
}

void Session::recordInMemory(const std::wstring& key, const std::wstring& value) {
    const std::string storeName(ZelUnified::ConfigKeys::inMemoryConfigStore);
    arrivals.addValue(host.getFeatureSet()->getConfigStoreByName(storeName), key, value);
}

void Session::addBootstrapStore(const BootstrapSpec& spec) {
    readWholeFile(spec.file); // the store itself would be empty if it could not read the file
    auto* const factory = dynamic_cast<ZelUnified::BootstrapStoreFactory*>(host.getFeatureSet().get());
    if (factory == nullptr) {
        throw Failure(ExitCode::Environment, "the plug-in cannot create a store for " + spec.file);
    }
    const auto store = factory->createBootstrapStore(spec.file, spec.priority);
    addStore(store);
    arrivals.add(store, StoreArrivals::Kind::Bootstrap, spec.file);
}

void Session::expectStored(const std::wstring& key, const std::wstring& value) {
    expectedValues.insert_or_assign(key, value);
}

void Session::forgetExpected(const std::vector<std::wstring>& keys) {
    for (const auto& key : keys) {
        expectedValues.erase(key);
    }
}

void Session::confirmWrites() {
    const auto expected = std::exchange(expectedValues, {});
    for (const auto& [key, value] : expected) {
        disk.requireStored(key, value);
    }
}

} // namespace lumora_config
