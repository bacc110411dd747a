#include "ConfigServiceImpl.h"

#include "CalendarIntegrationTypeCheck.h"

#include <kyr/StringUtils.h>
#include <unified/UnifiedFactory.h>
#include <zel/FipsUtils.h>
#include <zel/ZelLog.h>

#include <ConfigFeatureSet.h>
#include <ConfigKeys.h>

#include <algorithm>
#include <utility>

namespace ZelUnified {

namespace {

ZelLogger& serviceLogger = ZelLogger_getLogger("ConfigService-ConfigServiceImpl");

/// Differs from the rule in ConfigValueImpl::getValue(): this one compares the value instead of the key, and overwrites
/// the stored value.
void applyCachedValueFipsRule(ConfigValueImpl& record) {
    if (zel::common::FipsUtils::isFipsEnabled() &&
        KyrCoreUtils::caseInsensitiveStringEquals(record.getValue(), ConfigKeys::telephonyP2PEnabled)) {
        record.setValue(L"false");
    }
}

constexpr auto keyOf = [](const auto* entry) -> const std::wstring& { return entry->first; };

/// Sorts the entries by key. The first `ordered` ones are already sorted.
template <class Entries>
void sortByKey(Entries& entries, std::size_t ordered) {
    const caseInsensitiveMapComparator isBefore;
    const auto unsorted = entries.begin() + static_cast<std::ptrdiff_t>(ordered);
    std::ranges::sort(unsorted, entries.end(), isBefore, keyOf);
    std::ranges::inplace_merge(entries.begin(), unsorted, entries.end(), isBefore, keyOf);
}

} // namespace

ConfigServiceImpl::ConfigServiceImpl(const std::shared_ptr<UnifiedFactory>& factory)
    : ConfigServiceBaseImpl(factory), unifiedFactory(factory) {
    initialize(factory);
}

void ConfigServiceImpl::initialize(const std::shared_ptr<UnifiedFactory>&) {
    orderedValues.clear();
    configValuesIndex.clear();
    configValues.clear();
}

std::shared_ptr<ConfigFeatureSet> ConfigServiceImpl::getFeatureSet() const {
    return unifiedFactory ? unifiedFactory->getFeatureSetByType<ConfigFeatureSet>() : nullptr;
}

std::shared_ptr<ConfigValue> ConfigServiceImpl::getConfig(std::wstring key) {
    EnsureUpdateAccess(true);
    return findConfig(FoldedKey(key));
}

void ConfigServiceImpl::setConfig(std::wstring key, std::wstring value) {
    EnsureUpdateAccess(true);
    if (const auto featureSet = getFeatureSet()) {
        featureSet->setConfig(key, value);
    }
}

void ConfigServiceImpl::setInMemoryConfig(std::wstring key, std::wstring value) {
    EnsureUpdateAccess(true);
    if (const auto featureSet = getFeatureSet()) {
        featureSet->setInMemoryConfig(key, value);
    }
}

void ConfigServiceImpl::setMdmConfig(std::string data) {
    EnsureUpdateAccess(true);
    if (const auto featureSet = getFeatureSet()) {
        featureSet->setMdmConfig(data);
    }
}

std::shared_ptr<std::list<std::shared_ptr<ConfigValue>>> ConfigServiceImpl::getAllConfig() {
    // Sorts a list of its own, because several threads may call this.
    std::vector<const Entry*> entries;
    entries.reserve(configValues.size());
    for (const auto& entry : configValues) {
        entries.push_back(&entry);
    }
    sortByKey(entries, 0);
    auto all = std::make_shared<std::list<std::shared_ptr<ConfigValue>>>();
    for (const auto* entry : entries) {
        applyCachedValueFipsRule(*entry->second);
        all->push_back(entry->second);
    }
    return all;
}

void ConfigServiceImpl::resetConfig(std::wstring key) {
    EnsureUpdateAccess(true);
    if (const auto featureSet = getFeatureSet()) {
        featureSet->resetConfig(key);
    }
}

bool ConfigServiceImpl::removeConfigStoreAndCache(std::wstring storeName) {
    EnsureUpdateAccess(true);
    const auto featureSet = getFeatureSet();
    return featureSet && featureSet->removeConfigStore(KyrCoreUtils::toString(storeName));
}

void ConfigServiceImpl::removeAllCachedConfigStores() {
    EnsureUpdateAccess(true);
    if (const auto featureSet = getFeatureSet()) {
        featureSet->removeAllCachedConfigStores();
    }
}

void ConfigServiceImpl::setKeySensitive(std::wstring key) {
    EnsureUpdateAccess(true);
    if (const auto featureSet = getFeatureSet()) {
        featureSet->setKeySensitive(key);
    }
}

bool ConfigServiceImpl::isKeySensitive(std::wstring key) {
    EnsureUpdateAccess(true);
    return sensitiveKeys.contains(key);
}

bool ConfigServiceImpl::setUrlProvisioningData(std::wstring data) {
    const auto featureSet = getFeatureSet();
    return featureSet && featureSet->setUrlProvisioningData(std::move(data));
}

bool ConfigServiceImpl::resetAllowUriProvisioningData() {
    const auto featureSet = getFeatureSet();
    return featureSet && featureSet->resetAllowUriProvisioningData();
}

std::wstring ConfigServiceImpl::getAllConfigForPRT() {
    EnsureUpdateAccess(true);
    std::wstring report;
    if (const auto featureSet = getFeatureSet()) {
        featureSet->getAllConfigForPRT(report);
    }
    return report;
}

std::wstring ConfigServiceImpl::getValueFromConfigStore(std::string storeName, std::wstring key) {
    EnsureUpdateAccess(true);
    const auto featureSet = getFeatureSet();
    return featureSet ? featureSet->getValueFromConfigStore(storeName, key) : std::wstring();
}

void ConfigServiceImpl::configDownloadFailed() {
    if (ZelLog_isDebugEnabled(serviceLogger)) {
        ZelLog(serviceLogger, ZelLogLevel::Debug, ZEL_HERE, "ConfigServiceImpl::configDownloadFailed()");
    }
}

void ConfigServiceImpl::reset() {
    EnsureUpdateAccess(true);
    // Clears the containers before it destroys the records, because an observer's destructor may call the service.
    std::deque<Entry> released;
    released.swap(configValues);
    orderedValues.clear();
    configValuesIndex.clear();
}

void ConfigServiceImpl::refreshConfigFeatureSet() {
    EnsureUpdateAccess(true);
    if (const auto featureSet = getFeatureSet()) {
        featureSet->refreshConfigFeatureSet();
    }
}

void ConfigServiceImpl::OnConfigChanged(std::wstring key, std::wstring value, std::wstring originalValue,
                                        bool isOverridden, bool isDefined, std::wstring valueStoreName,
                                        std::wstring originalValueStoreName, bool deferFire) {
    EnsureUpdateAccess(true);
    // Keeps the record alive while observers run: one of them may reset the service.
    const auto record = findConfig(FoldedKey(key));
    SharedText storeName = storeNames.share(std::move(valueStoreName));
    SharedText originalStoreName = storeNames.share(std::move(originalValueStoreName));
    if (!record) {
        createConfig(key, std::move(value), std::move(originalValue), isOverridden, std::move(storeName),
                     std::move(originalStoreName));
        return;
    }
    const auto before = recordObservers.beginChange(*record);
    if (!before && !deferFire) {
        record->applyValuesAndFire(std::move(value), std::move(originalValue), isOverridden, isDefined,
                                   std::move(storeName), std::move(originalStoreName));
        return;
    }
    record->applyValues(std::move(value), std::move(originalValue), isOverridden, isDefined, std::move(storeName),
                        std::move(originalStoreName));
    recordObservers.endChange(*record, before);
    if (!deferFire) {
        record->fireChanged();
    }
}

void ConfigServiceImpl::FireIfRequired(std::wstring key) {
    EnsureUpdateAccess(true);
    if (const auto record = findConfig(FoldedKey(key))) {
        record->fireChanged();
    }
}

void ConfigServiceImpl::setupConfigKeyAliases(ConfigMap newNameOf) {
    EnsureUpdateAccess(true);
    newNames = KeyNameMap(std::move(newNameOf));
}

void ConfigServiceImpl::updateSensitiveKeyList(std::wstring key) {
    EnsureUpdateAccess(true);
    sensitiveKeys.insert(std::move(key));
}

void ConfigServiceImpl::onFeatureSetReady(bool ready) {
    if (getConfigReady() != ready) {
        setConfigReady(ready);
        fireConfigReady();
    }
}

std::shared_ptr<ConfigValue> ConfigServiceImpl::findRecord(const std::wstring& key) {
    EnsureUpdateAccess(true);
    const FoldedKey folded(key);
    if (const auto* newName = newNames.find(folded)) {
        if (const auto* const entry = configValuesIndex.find(FoldedKey(*newName))) {
            return entry->second;
        }
    }
    const auto* const entry = configValuesIndex.find(folded);
    return entry != nullptr ? entry->second : nullptr;
}

std::vector<std::shared_ptr<ConfigValue>> ConfigServiceImpl::getRecordsAfter(const std::wstring& key,
                                                                             std::size_t count) {
    EnsureUpdateAccess(true);
    const auto& entries = listInOrder();
    auto next = entries.begin();
    if (!key.empty()) {
        next = std::ranges::upper_bound(entries, key, caseInsensitiveMapComparator(), keyOf);
    }
    std::vector<std::shared_ptr<ConfigValue>> records;
    for (; next != entries.end() && records.size() < count; ++next) {
        records.push_back((*next)->second);
    }
    return records;
}

const std::vector<const ConfigServiceImpl::Entry*>& ConfigServiceImpl::listInOrder() {
    const auto ordered = orderedValues.size();
    orderedValues.reserve(configValues.size()); // the only allocation
    for (auto i = ordered; i < configValues.size(); ++i) {
        orderedValues.push_back(&configValues[i]);
    }
    sortByKey(orderedValues, ordered);
    return orderedValues;
}

void ConfigServiceImpl::addRecordObserver(std::weak_ptr<ConfigRecordObserver> observer) {
    EnsureUpdateAccess(true);
    recordObservers.add(std::move(observer));
}

void ConfigServiceImpl::removeRecordObserver(std::weak_ptr<ConfigRecordObserver> observer) {
    EnsureUpdateAccess(true);
    recordObservers.remove(observer);
}

std::shared_ptr<ConfigValueImpl> ConfigServiceImpl::findConfig(const FoldedKey& key) {
    EnsureUpdateAccess(true);
    const auto* newName = newNames.find(key);
    if (newName != nullptr) {
        if (auto record = findConfigFromKey(FoldedKey(*newName))) {
            ZelLog(serviceLogger, ZelLogLevel::Info, ZEL_HERE,
                   describeLookupByOldName(key.getText(), *newName, *record));
            return record;
        }
    }
    if (auto record = findConfigFromKey(key)) {
        return record;
    }
    return newName != nullptr ? createConfig(FoldedKey(*newName)) : createConfig(key);
}

std::shared_ptr<ConfigValueImpl> ConfigServiceImpl::findConfigFromKey(const FoldedKey& key) {
    if (const auto* const entry = configValuesIndex.find(key)) {
        applyCachedValueFipsRule(*entry->second);
        return entry->second;
    }
    // The value of this key depends on the machine, not on a store.
    if (key.equals(ConfigKeys::calendarIntegrationType)) {
        auto record = createConfig(key);
        CalendarIntegrationTypeCheck::detectCalendarIntegrationType(serviceLogger, record);
        return record;
    }
    return nullptr;
}

std::shared_ptr<ConfigValueImpl> ConfigServiceImpl::createConfig(const FoldedKey& key) {
    auto record = std::make_shared<ConfigValueImpl>(unifiedFactory, key.getText());
    insertOrReplace(key, record);
    return record;
}

std::shared_ptr<ConfigValueImpl> ConfigServiceImpl::createConfig(const std::wstring& key, std::wstring value,
                                                                 std::wstring originalValue, bool isOverridden,
                                                                 SharedText valueStoreName,
                                                                 SharedText originalValueStoreName) {
    auto record =
        std::make_shared<ConfigValueImpl>(unifiedFactory, key, std::move(value), std::move(originalValue), isOverridden,
                                          std::move(valueStoreName), std::move(originalValueStoreName));
    insertOrReplace(FoldedKey(key), record);
    return record;
}

void ConfigServiceImpl::insertOrReplace(const FoldedKey& key, std::shared_ptr<ConfigValueImpl> record) {
    if (auto* const entry = configValuesIndex.find(key)) {
        entry->second.swap(record); // the replaced record is destroyed on return
        return;
    }
    // All allocation happens before the insertion into the index, so container and index stay consistent.
    configValuesIndex.reserveOne();
    configValuesIndex.insert(key, configValues.emplace_back(std::wstring(key.getFolded()), std::move(record)));
}

std::wstring ConfigServiceImpl::describeLookupByOldName(const std::wstring& key, const std::wstring& newName,
                                                        ConfigValueImpl& record) {
    // The requested key, not its new name, decides whether the value is hidden.
    const std::wstring safeValue = isKeySensitive(key) ? std::wstring(ConfigKeys::valueHidden) : record.getValue();
    const std::wstring loggedValue =
        KyrCoreUtils::toWideString(ZelLogger_replacePIIData(KyrCoreUtils::toString(safeValue)));
    return L"findConfig key : [" + key + L"] is an alias for key : [" + newName +
           L"] actual lookup done on this key - value : [" + loggedValue + L"]";
}

void ConfigServiceImpl::logConfig() {
    EnsureUpdateAccess(true);
    std::wstring report = L"\n*********************** Master Configuration Settings *********************\n"
                          L"\nOriginalValue is the value set by the administrator\n"
                          L"\nValue is the value retrieved by searching the config sources by priority\n"
                          L"\nDefined Values\n--------------\n";
    appendSettings(report, true);
    report += L"\nUnDefined Values\n---------------\n";
    appendSettings(report, false);
    report += L"\n*************************** End Settings ***************************\n";
    ZelLog(serviceLogger, ZelLogLevel::Info, ZEL_HERE, report);
}

void ConfigServiceImpl::appendSettings(std::wstring& report, bool defined) {
    for (const auto* entry : listInOrder()) {
        const auto& record = entry->second;
        if (record->getisDefined() != defined) {
            continue;
        }
        const std::wstring recordKey = record->getKey();
        const bool hidden = isKeySensitive(recordKey);
        const std::wstring safeValue = hidden ? std::wstring(ConfigKeys::valueHidden) : record->getValue();
        const std::wstring safeOriginal = hidden ? std::wstring(ConfigKeys::valueHidden) : record->getOriginalValue();
        // Readers of the report expect this in the undefined section: the raw value, and the masked value instead of
        // the store's name.
        const std::wstring shownValue = defined ? safeValue : record->getValue();
        const std::wstring shownStoreName = defined ? record->getValueStoreName() : safeValue;
        report += L"Key: " + recordKey + L" -  Value - [" + shownValue + L"] valueStoreName [" + shownStoreName +
                  L"] | OriginalValue [" + safeOriginal + L"] originalValueStoreName [" +
                  record->getOriginalValueStoreName() + L"]\n";
    }
}

} // namespace ZelUnified
