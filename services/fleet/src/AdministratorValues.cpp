#include "AdministratorValues.h"

#include "FleetKeys.h"

#include <kyr/StringUtils.h>
#include <registry/RegistryFiles.h>
#include <registry/RegistryTextFile.h>
#include <registry/RegistryValue.h>
#include <unified/TypeName.h>

#include <ConfigKeys.h>

#include <array>
#include <span>
#include <typeinfo>
#include <utility>
#include <vector>

namespace fleet {

using namespace zel::registry;
namespace ConfigKeys = ZelUnified::ConfigKeys;

namespace {

struct TrustedStore {
    std::string_view name;
    std::string_view type;
};

/// A cached copy can have any name, but not these types.
constexpr std::array trustedStores{TrustedStore{ConfigKeys::bootstrapConfigStore, "ZelUnified::BootstrapConfigStore"},
                                   TrustedStore{ConfigKeys::configDefaultsFile, "ZelUnified::LocalFileConfigStore"}};

/// That of the configuration's own store of the policy.
constexpr int policyPriority = 33;

/// A key of the current user, opened for reading.
struct OpenKey {
    OpenKey(Registry& owner, const std::wstring& path) : registry(owner) {
        registry.RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, handle);
    }
    ~OpenKey() { registry.RegCloseKey(handle); }
    OpenKey(const OpenKey&) = delete;
    OpenKey& operator=(const OpenKey&) = delete;

    Registry& registry;
    HKEY handle{}; ///< Null, and without values, if there is no such key.
};

} // namespace

AdministratorValues::AdministratorValues(std::shared_ptr<Registry> administratorsRegistry)
    : registry(std::move(administratorsRegistry)) {}

std::shared_ptr<Registry> AdministratorValues::openRegistry() {
    // A platform with a registry protects the policy key from ordinary users.
    const auto folder = getAdministratorRegistryFolder();
    return folder.empty() ? getRegistry() : makeFileRegistry({.administrator = folder, .readsUserFiles = false});
}

void AdministratorValues::update(ZelUnified::ConfigFeatureSet& configuration) {
    for (const auto& trusted : trustedStores) {
        const std::string name(trusted.name);
        const auto store = configuration.getConfigStoreByName(name);
        auto& source = sources[name];
        if (!store || store == source.store.lock()) {
            continue;
        }
        auto& held = *store;
        if (ZelUnified::readableTypeName(&typeid(held)) == trusted.type) {
            source = {store, held.getPriority(), read(held)};
        }
    }
    // The policy does not come from its store, so a copy that has replaced the store does not hide it.
    const std::string policy(ConfigKeys::registryConfigStore);
    auto& source = sources[policy];
    const auto store = configuration.getConfigStoreByName(policy);
    if (store && store != source.store.lock()) {
        source = {store, policyPriority, readPolicy()};
    }
}

ZelUnified::ConfigMap AdministratorValues::read(ZelUnified::ConfigStore& store) {
    ZelUnified::ConfigMap values;
    std::wstring value;
    for (const auto key : FleetKeys::administratorsKeys) {
        if (store.getValue(std::wstring(key), value)) {
            values.insert_or_assign(std::wstring(key), value);
        }
    }
    return values;
}

ZelUnified::ConfigMap AdministratorValues::readPolicy() const {
    ZelUnified::ConfigMap values;
    const auto path = L"Software\\" + KyrCoreUtils::toWideString(ConfigKeys::policyRegistryPath);
    const OpenKey key(*registry, path);
    std::vector<wchar_t> name(longestRegistryValueName + 1);
    std::vector<std::uint8_t> data(longestRegistryValueData);
    for (std::uint32_t index = 0;; ++index) {
        auto nameLength = static_cast<std::uint32_t>(name.size());
        auto dataLength = static_cast<std::uint32_t>(data.size());
        std::uint32_t type = REG_NONE;
        if (registry->RegEnumValueW(key.handle, index, name, nameLength, type, data, dataLength) !=
            RegistryResult::Success) {
            return values;
        }
        const std::wstring valueName(name.data(), nameLength);
        const auto text = decodeRegistryValue(type, std::span(data).first(dataLength));
        if (text && FleetKeys::isAdministratorsKey(valueName)) {
            values.insert_or_assign(valueName, *text);
        }
    }
}

std::wstring AdministratorValues::get(std::wstring_view key) const {
    const Source* winner = nullptr;
    for (const auto& [name, source] : sources) {
        if (source.values.contains(std::wstring(key)) && (winner == nullptr || source.priority < winner->priority)) {
            winner = &source;
        }
    }
    return winner == nullptr ? std::wstring() : winner->values.find(std::wstring(key))->second;
}

} // namespace fleet
