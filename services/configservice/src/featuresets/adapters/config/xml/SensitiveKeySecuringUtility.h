#pragma once

#include <ConfigMap.h>
#include <ConfigServiceExport.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace ZelUnified {

/// Replaces the two well-known passwords of a map with encrypted base64 text, so that the map can be passed on. The
/// encryption cannot be reversed. No lock: no other thread may use the map during the call.
class LUMORA_CONFIG_API SensitiveKeySecuringUtility {
public:
    static constexpr std::uint32_t KEYS_TO_SECURE = 2;
    static const std::wstring EDI_PSW_KEY;
    static const std::wstring BDI_PSW_KEY;
    static const std::wstring WELL_KNOWN_SENSITIVE_KEYS[KEYS_TO_SECURE];

    /// Encrypts the values of the well-known keys (case-insensitive). A second call encrypts them again. If encryption
    /// fails, clears the value, so that no plain text remains.
    static void secureWellKnownSensitiveKeys(ConfigMap& values);

    /// Returns true if the key is one of the well-known keys (case-insensitive). Safe to call while the library is
    /// being loaded.
    static bool isWellKnownSensitiveKey(std::wstring_view key) noexcept;

private:
    static void secureKey(ConfigMap::iterator& entry);
};

} // namespace ZelUnified
