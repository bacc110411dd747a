#pragma once

#include "ConfigStoreManagerFixture.h"

#include <zel/FipsUtils.h>

#include <optional>
#include <string>

namespace ZelUnified {

/// Looks keys up by the manager, with all arguments and out parameters.
class ConfigLookupFixture : public ConfigStoreManagerFixture {
protected:
    ~ConfigLookupFixture() override { zel::common::FipsUtils::overrideFipsMode(std::nullopt); }

    struct Answer {
        bool found = false;
        std::wstring value = L"before";
        std::wstring storeName = L"before";
        bool valueFromLegacyKey = false;
    };

    Answer ask(const std::wstring& key, bool skipLocal = false, const std::string& storeFilter = "") {
        Answer answer;
        answer.found =
            manager.getValue(key, answer.value, answer.storeName, answer.valueFromLegacyKey, skipLocal, storeFilter);
        return answer;
    }

    struct Original {
        bool hasOverride = false;
        std::wstring value = L"before";
        std::wstring storeName;
        bool fromLegacyKey = true;
    };

    Original askOriginal(const std::wstring& key) {
        Original original;
        original.hasOverride =
            manager.getOriginalValue(key, original.value, original.storeName, original.fromLegacyKey);
        return original;
    }
};

} // namespace ZelUnified
