#include "Session.h"

#include "stores/ForeignXmlStore.h"

namespace lumora_config {

Session::Session(ConfigHost& configHost, Printer& target, bool showSecrets)
    : host(configHost), printer(target), mask(configHost.getFeatureSet(), showSecrets) {
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

void Session::addForeignStore(const StoreSpec& spec) {
    const auto store = std::make_shared<ForeignXmlStore>(spec);
    host.onServices("lumora-config: sensitive keys", [&] {
        for (const auto& key : store->getSensitiveKeys()) {
            host.getService()->setKeySensitive(key);
        }
    });
    addStore(store);
}

} // namespace lumora_config
