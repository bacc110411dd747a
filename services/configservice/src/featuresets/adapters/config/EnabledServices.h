#pragma once

#include "featuresets/adapters/config/chain/ConfigStoreManager.h"
#include "logging/LogPlace.h"

#include <memory>
#include <string>

namespace ZelUnified {

/// Derives the flags "Telephony_Enabled", "Voicemail_Enabled" and "Meetings_Enabled" from the server keys, unless an
/// administrator set them. A flag set by the shipped defaults or by the user is derived too. The results are written to
/// the in-memory store.
class EnabledServices {
public:
    explicit EnabledServices(std::shared_ptr<ConfigStoreManager> storeManager)
        : configStoreManager(std::move(storeManager)) {}

    /// Derives telephony, voicemail and meetings, in this order. Does nothing without a manager.
    void SetEnabledServices();

    /// Returns true if a cached copy of a server's store exists on disk. Without one, as in a first run, the flags are
    /// not derived.
    static bool shouldSetEnabledServicesBasedOnCachedStores();

private:
    void SetTelephonyEnabled();
    void SetVoicemailEnabled();
    void SetMeetingsEnabled();
    /// Does nothing: "STARTUP_AUTHENTICATION_REQUIRED" is never derived.
    void SetStartupAuthenticationRequiredEnabled() {}

    /// Returns true if the flag must be derived; otherwise logs which store set it.
    bool isLeftToDerivation(std::wstring_view flagKey, const LogPlace& place) const;
    bool isAnySet(std::wstring_view firstKey, std::wstring_view secondKey) const;
    bool hasMeetingServer(std::wstring_view addressKey, std::wstring_view typeKey) const;
    std::wstring read(std::wstring_view key) const;
    /// Logs the flag and stores it in the in-memory store.
    void setFlag(std::wstring_view flagKey, const std::string& logPrefix, bool flag, const LogPlace& place);

    const std::shared_ptr<ConfigStoreManager> configStoreManager; ///< Null in an adapter without a factory.
};

} // namespace ZelUnified
