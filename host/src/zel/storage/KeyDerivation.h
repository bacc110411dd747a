#pragma once

#include <zel/KeyProvider.h>

#include <array>
#include <span>
#include <string_view>

namespace zel::storage {

/// Tells keys apart without telling anything about them.
using KeyId = std::array<unsigned char, 8>;

/// HKDF-SHA256. False when the library can't; `derived` is of no meaning then.
bool deriveKey(const MasterKey& key, std::span<const unsigned char> salt, std::string_view purpose,
               std::span<unsigned char> derived);

bool deriveKeyId(const MasterKey& key, KeyId& id);

} // namespace zel::storage
