#pragma once

#include <zel/KeyProvider.h>

#include <string>
#include <string_view>

namespace zel::storage {

/// The platform's protection of data on the disk, which only the same user can remove. Each platform implements it.
/// Stateless.
class LUMORA_HOST_API KeyProtection {
public:
    KeyProtection() = delete;

    /// Returns false if the platform has none: key files then hold the key itself.
    static bool isPresent() noexcept;
    /// Sets `wrapped` to the protected key. Returns false on failure.
    static bool wrap(const MasterKey& key, std::string& wrapped);
    /// Returns Found, Malformed, or Unavailable if the bytes may be in order but cannot be unwrapped now.
    static KeyResult unwrap(std::string_view wrapped, MasterKey& key);
};

} // namespace zel::storage
