#include "Session.h"

#include "stores/ForeignXmlStore.h"

#include <ConfigKeys.h>

#include <utility>

namespace lumora_config {

Session::Session(ConfigHost& configHost, Printer& target, bool showSecrets)
    : host(configHost), printer(target), mask(configHost.getFeatureSet(), showSecrets), disk(configHost) {
    host.onServices("lumora-config: inspect",
                    [this] { chain = std::make_unique<ChainInspector>(host.getFeatureSet(), host.getService()); });
}

Session::~Session() {
    host.onServices("lumora-config: let go", [this] {
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

void Session::addBootstrapStore(const std::shared_ptr<ZelUnified::ConfigStore>& store, const std::string& file) {
    addStore(store);
    arrivals.add(store, StoreArrivals::Kind::Bootstrap, file);
}

void Session::noteArrival(const std::string& storeName, StoreArrivals::Kind kind, const std::string& file) {
    arrivals.add(host.getFeatureSet()->getConfigStoreByName(storeName), kind, file);
}

void Session::noteInMemory(const std::wstring& key, const std::wstring& value) {
    const std::string storeName(ZelUnified::ConfigKeys::inMemoryConfigStore);
    arrivals.addValue(host.getFeatureSet()->getConfigStoreByName(storeName), key, value);
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
