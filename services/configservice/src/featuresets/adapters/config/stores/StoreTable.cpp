#include "StoreTable.h"

#include "secure/FipsValueOverride.h"

#include <kyr/StringUtils.h>

#include <BootstrapConfigStore.h>
#include <CacheConfigStore.h>
#include <ConfigKeys.h>
#include <InMemoryConfigStore.h>
#include <LocalFileConfigStore.h>
#include <MdmConfigStore.h>
#include <RegistryConfigStore.h>

#include <string_view>
#include <typeinfo>

namespace ZelUnified {

StoreTable* StoreTable::find(ConfigStore& store) {
    const auto& type = typeid(store);
    if (type == typeid(LocalFileConfigStore)) {
        return static_cast<LocalFileConfigStore&>(store).table.get();
    }
    if (type == typeid(XmlConfigStore) || type == typeid(CacheConfigStore)) {
        return static_cast<XmlConfigStore&>(store).table.get();
    }
    if (type == typeid(InMemoryConfigStore)) {
        return static_cast<InMemoryConfigStore&>(store).table.get();
    }
    if (type == typeid(RegistryConfigStore)) {
        return static_cast<RegistryConfigStore&>(store).table.get();
    }
    if (type == typeid(MdmConfigStore)) {
        return static_cast<MdmConfigStore&>(store).table.get();
    }
    if (type == typeid(BootstrapConfigStore)) {
        return static_cast<BootstrapConfigStore&>(store).table.get();
    }
    return nullptr;
}

bool StoreTable::getValue(const FoldedKey& key, std::wstring& value) {
    if (!mayAnswer(key)) {
        value.clear();
        return false;
    }
    if (rule == Rule::Trims) {
        return getTrimmedValue(key, value);
    }
    const zel::Mutex::ScopedLock held(tableLock);
    const auto found = values.find(key);
    if (!found || isWithheld(key)) {
        value.clear();
        return false;
    }
    value = zel::withFipsOverride(key.getText(), *found); // last: `key` may refer to `value`
    return true;
}

bool StoreTable::getTrimmedValue(const FoldedKey& key, std::wstring& value) {
    const zel::Mutex::ScopedLock held(tableLock);
    const auto found = values.find(key);
    const auto trimmed = KyrCoreUtils::trim(found.value_or(std::wstring_view()));
    value = zel::withFipsOverride(key.getText(), trimmed); // last: `key` may refer to `value`
    return found.has_value();
}

bool StoreTable::isWithheld(const FoldedKey& key) const {
    return rule == Rule::WithholdsCertificateValidation && key.equals(ConfigKeys::certificateValidationEnabled);
}

bool StoreTable::storeValue(const std::wstring& key, const std::wstring& value) {
    lock()->store(key, value);
    return true;
}

} // namespace ZelUnified
