#pragma once

#include "featuresets/adapters/config/chain/ConfigStoreManager.h"
#include "logging/LogPlace.h"

#include <memory>
#include <string>

namespace ZelUnified {

/// Works out which services exist from the server keys, where no administrator said so: "Telephony_Enabled",
/// "Voicemail_Enabled" and "Meetings_Enabled". A flag that comes from the shipped defaults, or from the user, counts as
/// not said. The answers go into the in-memory store.
class EnabledServices {
public:
    explicit EnabledServices(std::shared_ptr<ConfigStoreManager> storeManager)
        : configStoreManager(std::move(storeManager)) {}

    /// Telephony, voicemail and meetings, in this order. Nothing without a manager.
    void SetEnabledServices();

    /// Whether a cached copy of a server's store lies on disk. Without one, as on a first run, the flags are left
    /// alone.
    static bool shouldSetEnabledServicesBasedOnCachedStores();

private:
    void SetTelephonyEnabled();
    void SetVoicemailEnabled();
    void SetMeetingsEnabled();
    /// "STARTUP_AUTHENTICATION_REQUIRED" is never derived.
    void SetStartupAuthenticationRequiredEnabled() {}

    /// Returns true if the flag is to be derived; otherwise logs who set it.
    bool isLeftToDerivation(std::wstring_view flagKey, const LogPlace& place) const;
    bool isAnySet(std::wstring_view firstKey, std::wstring_view secondKey) const;
    bool hasMeetingServer(std::wstring_view suffix) const;
    std::wstring read(std::wstring_view key) const;
    /// Logs the flag and stores it in the in-memory store.
    void setFlag(std::wstring_view flagKey, const std::string& logPrefix, bool flag, const LogPlace& place);

    const std::shared_ptr<ConfigStoreManager> configStoreManager; ///< Null in an adapter without a factory.
};

} // namespace ZelUnified
