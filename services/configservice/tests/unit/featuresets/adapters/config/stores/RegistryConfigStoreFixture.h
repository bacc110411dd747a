#pragma once

#include "InMemoryRegistry.h"
#include "TemporaryProfile.h"

#include <RegistryConfigStore.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ZelUnified {

/// Stores over a registry in memory.
class RegistryConfigStoreTest : public testing::Test {
protected:
    static inline const std::wstring root = L"Software\\Policies\\Client";

    RegistryConfigStore makeStore() { return {nullptr, "RegistryConfigStore", 30, "Policies\\Client"}; }

    void setText(const std::wstring& below, std::wstring name, std::wstring_view text) {
        registry->setText(zel::registry::HKEY_CURRENT_USER, root + below, std::move(name), text);
    }
    void setRaw(std::wstring name, std::uint32_t type, std::vector<std::uint8_t> data) {
        registry->setValue(zel::registry::HKEY_CURRENT_USER, root, {std::move(name), type, std::move(data)});
    }

    /// Returns the value in a new store, or nothing if it does not contain the key.
    std::optional<std::wstring> readBack(const std::wstring& key) {
        auto store = makeStore();
        std::wstring value = L"left over";
        if (store.getValue(key, value)) {
            return value;
        }
        EXPECT_EQ(value, L"");
        return std::nullopt;
    }

    testing_host::TemporaryProfile profile;
    testing_host::InMemoryRegistry::Installed registry;
    const std::filesystem::path textFile = profile.config() / "RegistryConfigStore.txt";
};

} // namespace ZelUnified
