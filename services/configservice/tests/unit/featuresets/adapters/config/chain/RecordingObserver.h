#pragma once

#include <kyr/StringUtils.h>

#include <ConfigStoreManager_Observer.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace ZelUnified {

/// Records the announcements of the manager as text, one line per call: "Key: value [store] | original [store]", then
/// "overridden", "undefined" and "deferred" where they apply.
class RecordingObserver final : public ConfigStoreManager_Observer {
public:
    void onFireIfRequired(std::wstring key) override {
        announcements.push_back("fire " + KyrCoreUtils::toString(key));
        react(key);
    }
    void onSensitiveKeyAddedOrUpdated(std::wstring key) override {
        announcements.push_back("sensitive " + KyrCoreUtils::toString(key));
        react(key);
    }
    void onConfigAddedOrUpdated(std::wstring key, std::wstring value, std::wstring originalValue, bool isOverridden,
                                bool isDefined, std::wstring valueStoreName, std::wstring originalValueStoreName,
                                bool deferFire) override {
        announcements.push_back(
            KyrCoreUtils::toString(key + L": " + value + L" [" + valueStoreName + L"] | " + originalValue + L" [" +
                                   originalValueStoreName + L"]" + (isOverridden ? L" overridden" : L"") +
                                   (isDefined ? L"" : L" undefined") + (deferFire ? L" deferred" : L"")));
        react(key);
    }

    std::vector<std::string> take() { return std::exchange(announcements, {}); }

    /// Called after each announcement of a key.
    std::function<void(const std::wstring&)> reaction;
    std::vector<std::string> announcements;

private:
    void react(const std::wstring& key) {
        if (reaction) {
            reaction(key);
        }
    }
};

} // namespace ZelUnified
