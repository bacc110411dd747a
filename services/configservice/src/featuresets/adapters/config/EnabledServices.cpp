#include "EnabledServices.h"

#include "StoreNamePredicates.h"
#include "featuresets/adapters/config/cache/ConfigAdapterLogger.h"
#include "featuresets/adapters/config/chain/CachedConfigFiles.h"

#include <kyr/FileUtils.h>
#include <kyr/StringUtils.h>

#include <ConfigKeys.h>

#include <algorithm>
#include <array>
#include <utility>

namespace ZelUnified {

using KyrCoreUtils::caseInsensitiveStringEquals;

void EnabledServices::SetEnabledServices() {
    if (!configStoreManager) {
        return;
    }
    SetTelephonyEnabled();
    SetVoicemailEnabled();
    SetMeetingsEnabled();
}

void EnabledServices::SetTelephonyEnabled() {
    const LogPlace place{ZEL_HERE};
    if (isLeftToDerivation(ConfigKeys::telephonyEnabled, place)) {
        setFlag(ConfigKeys::telephonyEnabled,
                "Setting telephonyEnabled flag: ", isAnySet(ConfigKeys::ctiServer1, ConfigKeys::sabrelServer1), place);
    }
}

void EnabledServices::SetVoicemailEnabled() {
    const LogPlace place{ZEL_HERE};
    if (isLeftToDerivation(ConfigKeys::voicemailEnabled, place)) {
        setFlag(ConfigKeys::voicemailEnabled, "Setting voicemailEnabled flag:",
                isAnySet(ConfigKeys::voicemailPrimaryServer, ConfigKeys::vvmMailstoreServer0), place);
    }
}

void EnabledServices::SetMeetingsEnabled() {
    const LogPlace place{ZEL_HERE};
    if (!isLeftToDerivation(ConfigKeys::meetingsEnabled, place)) {
        return;
    }
    constexpr std::array servers{
        std::pair{ConfigKeys::meetingServerAddress, ConfigKeys::meetingServerType},
        std::pair{ConfigKeys::meetingServerAddressBackup, ConfigKeys::meetingServerTypeBackup},
        std::pair{ConfigKeys::meetingServerAddressBackup2, ConfigKeys::meetingServerTypeBackup2},
    };
    bool flag = false;
    for (const auto& [addressKey, typeKey] : servers) {
        flag |= hasMeetingServer(addressKey, typeKey);
    }
    setFlag(ConfigKeys::meetingsEnabled, "Setting Meetings_Enabled flag: ", flag, place);
}

bool EnabledServices::shouldSetEnabledServicesBasedOnCachedStores() {
    std::vector<std::string> files;
    KyrCoreUtils::FileUtils::getFilesFromDirectory(CachedConfigFiles::getDirectory(), "dat", files);
    return std::any_of(files.begin(), files.end(), [](const std::string& file) {
        const auto name = KyrCoreUtils::FileUtils::getFileName(file);
        return isCachedGarnConfigStore(name) || isCachedPresenceConfigStore(name) || isCachedTftpConfigStore(name);
    });
}

bool EnabledServices::isLeftToDerivation(std::wstring_view flagKey, const LogPlace& place) const {
    std::wstring value;
    std::wstring storeName;
    bool valueFromLegacyKey = false;
    configStoreManager->getValue(std::wstring(flagKey), value, storeName, valueFromLegacyKey, true, "");
    if (caseInsensitiveStringEquals(storeName, KyrCoreUtils::toWideString(ConfigKeys::configDefaultsFile))) {
        return true;
    }
    const auto shown =
        configStoreManager->isSensitiveKey(std::wstring(flagKey)) ? std::wstring(ConfigKeys::valueHidden) : value;
    ZelLog(configAdapterLogger, ZelLogLevel::Info, place,
           std::wstring(flagKey) + L" explicitly set to '" + shown + L"' in the '" + storeName + L"' config store");
    return false;
}

bool EnabledServices::isAnySet(std::wstring_view firstKey, std::wstring_view secondKey) const {
    const auto first = read(firstKey);
    const auto second = read(secondKey);
    return !first.empty() || !second.empty();
}

bool EnabledServices::hasMeetingServer(std::wstring_view addressKey, std::wstring_view typeKey) const {
    const auto address = read(addressKey);
    const auto type = read(typeKey);
    return !address.empty() && (type.empty() || caseInsensitiveStringEquals(type, L"Mirrox"));
}

std::wstring EnabledServices::read(std::wstring_view key) const {
    std::wstring value;
    configStoreManager->getValue(std::wstring(key), value);
    return value;
}

void EnabledServices::setFlag(std::wstring_view flagKey, const std::string& logPrefix, bool flag,
                              const LogPlace& place) {
    ZelLog(configAdapterLogger, ZelLogLevel::Info, place, logPrefix + (flag ? "1" : "0"));
    configStoreManager->setInMemoryValue(std::wstring(flagKey), KyrCoreUtils::toWideString(flag));
}

} // namespace ZelUnified
