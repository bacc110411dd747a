#pragma once

#include <zel/KeyProvider.h>

#include <array>
#include <span>
#include <string_view>

namespace zel::storage {

/// Identifies a key without revealing anything about it.
using KeyId = std::array<unsigned char, 8>;

/// Derives a key with HKDF-SHA256. Returns false if the library fails; `derived` is then invalid.
bool deriveKey(const MasterKey& key, std::span<const unsigned char> salt, std::string_view purpose,
               std::span<unsigned char> derived);

bool deriveKeyId(const MasterKey& key, KeyId& id);

} // namespace zel::storage
