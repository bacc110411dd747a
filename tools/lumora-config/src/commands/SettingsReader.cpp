#include "SettingsReader.h"

#include "output/Failure.h"
#include "stores/ReportSettings.h"

#include <kyr/StringUtils.h>

#include <ConfigCatalogue.h>
#include <ConfigKeys.h>

#include <algorithm>

namespace lumora_config {

namespace {

namespace ConfigKeys = ZelUnified::ConfigKeys;

void addSetting(const Session& session, SettingsDump& dump, const std::wstring& key, const Reading& reading) {
    dump.settings.push_back({std::wstring(ConfigKeys::spellKey(key)), reading.value, reading.storeName,
                             session.getMask().hides(key), false});
}

void sortByKey(SettingsDump& dump) {
    std::ranges::stable_sort(dump.settings, ZelUnified::caseInsensitiveMapComparator(), &DumpedSetting::key);
}

std::shared_ptr<ZelUnified::ConfigStore> findStore(Session& session, const std::string& name) {
    auto store = session.getHost().getFeatureSet()->getConfigStoreByName(name);
    if (!store) {
        throw Failure(ExitCode::NotFound, "there is no store '" + name + "'");
    }
    return store;
}

} // namespace

SettingsDump readStoreValues(Session& session, const std::string& storeName) {
    SettingsDump dump{storeName, {}, ""};
    session.getHost().onServices("lumora-config: values of a store", [&] {
        const auto store = findStore(session, storeName);
        dump.source = store->getName();
        Reading reading;
        reading.storeName = KyrCoreUtils::toWideString(dump.source);
        for (const auto& key : store->getKeys()) {
            if (store->getValue(key, reading.value)) {
                addSetting(session, dump, key, reading);
            }
        }
    });
    sortByKey(dump);
    return dump;
}

SettingsDump readUsersValues(Session& session) {
    auto dump = readStoreValues(session, std::string(ConfigKeys::localFileConfigStore));
    dump.source = "user";
    std::erase_if(dump.settings, [](const DumpedSetting& setting) { return belongsToProfile(setting.key); });
    return dump;
}

SettingsDump readEffectiveValues(Session& session) {
    SettingsDump dump{"effective", {}, ""};
    session.getHost().onServices("lumora-config: values in force", [&] {
        for (const auto& listed : session.getChain().list(L"")) {
            addSetting(session, dump, listed.key, {listed.value, listed.storeName, false});
        }
    });
    sortByKey(dump);
    return dump;
}

SettingsDump readAdministratorsValues(Session& session) {
    SettingsDump dump{"administrator", {}, ""};
    session.getHost().onServices("lumora-config: administrator's values", [&] {
        for (const auto& listed : session.getChain().list(L"")) {
            if (const auto reading = session.getChain().read(listed.key, true)) {
                addSetting(session, dump, listed.key, *reading);
            }
        }
    });
    sortByKey(dump);
    return dump;
}

SettingsDump readSource(Session& session, const std::string& source) {
    if (source.empty() || source == "user") {
        return readUsersValues(session);
    }
    if (source == "effective") {
        return readEffectiveValues(session);
    }
    if (source == "administrator") {
        return readAdministratorsValues(session);
    }
    if (source != "report") {
        return readStoreValues(session, source);
    }
    std::string report;
    session.getHost().onServices("lumora-config: report", [&] {
        report = KyrCoreUtils::toString(session.getHost().getService()->getAllConfigForPRT());
    });
    return parseReport(report, "");
}

void hideSecrets(SettingsDump& dump) {
    for (auto& setting : dump.settings) {
        if (setting.sensitive) {
            setting.hidden = true;
            setting.value.clear();
        }
    }
}

bool belongsToProfile(const std::wstring& key) {
    return KyrCoreUtils::caseInsensitiveStringEquals(key, ConfigKeys::primaryConfigStores);
}

} // namespace lumora_config
