#include "RegistryKeyHandle.h"
#include "RegistryTreeReader.h"
#include "StoreTable.h"
#include "secure/FilePermissions.h"

#include <kyr/FileUtils.h>
#include <kyr/StringUtils.h>
#include <unified/UnifiedFactory.h>
#include <zel/ZelLog.h>

#include <ConfigFeatureSet.h>
#include <ConfigKeys.h>
#include <RegistryConfigStore.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace ZelUnified {

using namespace zel::registry;
using KyrCoreUtils::FileUtils;

namespace {

ZelLogger& registryLogger = ZelLogger_getLogger("ConfigService-RegistryConfigStore");

/// The parent key of the current user's policies.
constexpr std::wstring_view softwareKey = L"Software\\";

bool isPasswordLike(std::wstring_view key) {
    return KyrCoreUtils::caseInsensitiveFind(key, ConfigKeys::connectionPassword) >= 0;
}

/// Returns the value that a log or a file may show.
std::wstring_view shownValue(const ConfigEntry& entry) {
    return isPasswordLike(entry.getKey()) ? ConfigKeys::valueHidden : entry.getValue();
}

/// Writes `text` into the buffer after its first `length` characters, truncated to the size of the buffer.
void writeAt(RegistryConfigStore::PathBuffer& buffer, std::size_t length, std::wstring_view text) {
    const auto capacity = RegistryConfigStore::pathBufferSize - 1 - length;
    const auto end = std::ranges::copy(text.substr(0, capacity), buffer + length).out;
    *end = L'\0';
}

std::size_t textLength(const RegistryConfigStore::PathBuffer& buffer) {
    return static_cast<std::size_t>(std::ranges::find(buffer, L'\0') - buffer);
}

} // namespace

RegistryConfigStore::RegistryConfigStore(std::shared_ptr<UnifiedFactory> factory, std::string storeName,
                                         int storePriority, std::string subkey)
    : table(std::make_unique<StoreTable>(StoreTable::Rule::WithholdsCertificateValidation)),
      priority(storePriority),
      name(std::move(storeName)),
      unifiedFactory(std::move(factory)) {
    const auto registry = getRegistry();
    ConfigMap read;
    RegistryTreeReader(*registry, read).read(std::wstring(softwareKey) + KyrCoreUtils::toWideString(subkey));
    table->replace(std::move(read));
    markSensitiveKeys();
    logConfigMap();
    writeTextCopy();
}

RegistryConfigStore::~RegistryConfigStore() = default;

bool RegistryConfigStore::getValue(const std::wstring& key, std::wstring& value) {
    return table->getValue(key, value);
}

bool RegistryConfigStore::storeValue(const std::wstring&, const std::wstring&) {
    return false;
}

std::vector<std::wstring> RegistryConfigStore::getKeys() {
    return table->getKeys();
}

bool RegistryConfigStore::removeValue(const std::wstring&) {
    return false;
}

/// Marks nothing while the adapter is being constructed, because there is no feature set yet.
void RegistryConfigStore::markSensitiveKeys() const {
    const auto featureSet = unifiedFactory ? unifiedFactory->getFeatureSetByType<ConfigFeatureSet>() : nullptr;
    if (!featureSet) {
        return;
    }
    for (const auto& key : table->getKeys()) {
        if (isPasswordLike(key)) {
            featureSet->setKeySensitive(key);
        }
    }
}

void RegistryConfigStore::logConfigMap() const {
    const auto values = table->lock();
    if (values->isEmpty()) {
        return;
    }
    std::wstring text;
    for (const auto& entry : values->list()) {
        text.append(L"\n").append(entry->getKey()).append(L": ").append(shownValue(*entry));
    }
    ZelLog(registryLogger, ZelLogLevel::Info, ZEL_HERE, text);
}

void RegistryConfigStore::writeTextCopy() const {
    const auto directory = FileUtils::getConfigDirectory();
    if (directory.empty()) {
        return;
    }
    const auto path = directory + FileUtils::FileSeparator() + std::string(ConfigKeys::registryConfigStore) + ".txt";
    const auto values = table->lock();
    FileUtils::removeFile(path); // also a dangling link, which does not count as an existing file
    if (values->isEmpty()) {
        return;
    }
    std::string text;
    for (const auto& entry : values->list()) {
        text += KyrCoreUtils::toString(entry->getKey()) + ": " + KyrCoreUtils::toString(shownValue(*entry)) + '\n';
    }
    createForOwner(path, text); // only the owner may read policies
}

void RegistryConfigStore::removeRegistrySettings() {
    PathBuffer path{};
    writeAt(path, 0, std::wstring(softwareKey) + KyrCoreUtils::toWideString(ConfigKeys::policyRegistryPath));
    regDelnodeRecurse(HKEY_CURRENT_USER, path);
}

bool RegistryConfigStore::regDelnodeRecurse(HKEY root, PathBuffer& subkey) {
    const auto registry = getRegistry();
    const auto deleteKey = [&] {
        if (registry->RegDeleteKeyW(root, subkey) != RegistryResult::Success) {
            return false;
        }
        ZelLog(registryLogger, ZelLogLevel::Info, ZEL_HERE, std::wstring(L"Successfully deleted the key: ") + subkey);
        return true;
    };
    if (deleteKey()) {
        return true;
    }
    RegistryKeyHandle key(*registry, root, subkey);
    if (!key) {
        const bool absent = key.getResult() == RegistryResult::NotFound;
        const std::wstring text = absent ? L"Key not found: " : L"Error opening key: ";
        ZelLog(registryLogger, ZelLogLevel::Warning, ZEL_HERE, text + subkey);
        return absent;
    }
    deleteSubkeys(*registry, root, key.get(), subkey);
    key.close();
    return deleteKey();
}

void RegistryConfigStore::deleteSubkeys(Registry& registry, HKEY root, HKEY key, PathBuffer& subkey) {
    const auto subkeyLength = textLength(subkey);
    if (subkeyLength > 0 && subkey[subkeyLength - 1] != L'\\') {
        writeAt(subkey, subkeyLength, L"\\");
    }
    const auto prefixLength = textLength(subkey);
    std::array<wchar_t, 260> name{};
    auto nameLength = static_cast<std::uint32_t>(name.size());
    std::wstring previous;
    while (registry.RegEnumKeyExW(key, 0, name, nameLength) == RegistryResult::Success) {
        std::wstring child(name.data(), nameLength);
        writeAt(subkey, prefixLength, child);
        // If the buffer has no space for the name, the path would be that of this key. A key whose path was truncated
        // counts as deleted although it still exists, so a repeated name ends the loop.
        if (textLength(subkey) == prefixLength || child == previous || !regDelnodeRecurse(root, subkey)) {
            break;
        }
        previous = std::move(child);
        nameLength = static_cast<std::uint32_t>(name.size());
    }
    subkey[subkeyLength] = L'\0';
}

} // namespace ZelUnified
