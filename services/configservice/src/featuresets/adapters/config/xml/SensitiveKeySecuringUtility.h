#pragma once

#include <ConfigMap.h>
#include <ConfigServiceExport.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace ZelUnified {

/// Replaces the two well-known passwords of a map by an enciphered base64 text, so that the map can be handed on. There
/// is no way back. No lock: the caller owns the map for the length of the call.
class LUMORA_CONFIG_API SensitiveKeySecuringUtility {
public:
    static constexpr std::uint32_t KEYS_TO_SECURE = 2;
    static const std::wstring EDI_PSW_KEY;
    static const std::wstring BDI_PSW_KEY;
    static const std::wstring WELL_KNOWN_SENSITIVE_KEYS[KEYS_TO_SECURE];

    /// Secures the entries of the well-known keys, in any case. A second run enciphers again; a failing cipher empties
    /// the value rather than leave it in the clear.
    static void secureWellKnownSensitiveKeys(ConfigMap& values);

    /// Whether the key, in any case, is one of the well-known ones. Safe to ask while the library is being loaded.
    static bool isWellKnownSensitiveKey(std::wstring_view key) noexcept;

private:
    static void secureKey(ConfigMap::iterator& entry);
};

} // namespace ZelUnified
