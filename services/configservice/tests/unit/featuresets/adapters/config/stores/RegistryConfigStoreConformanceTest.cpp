#include "ConfigStoreConformance.h"

#include <InMemoryRegistry.h>
#include <RegistryConfigStore.h>

namespace ZelUnified {

INSTANTIATE_TEST_SUITE_P(
    RegistryConfigStore, ConfigStoreConformance,
    testing::Values(StoreKind{
        "Registry",
        [](const testing_host::TemporaryProfile&, const ConfigMap& values) -> std::shared_ptr<ConfigStore> {
            const testing_host::InMemoryRegistry::Installed registry;
            for (const auto& [key, value] : values) {
                registry->setText(zel::registry::HKEY_CURRENT_USER, L"Software\\Policies\\Client", key, value);
            }
            return std::make_shared<RegistryConfigStore>(nullptr, "RegistryConfigStore", 33, "Policies\\Client");
        },
        "RegistryConfigStore", 33, true, false, StoreKind::Writes::Refused, StoreKind::Emptying::Ignored}),
    storeKindLabel);

} // namespace ZelUnified
