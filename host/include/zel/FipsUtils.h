#pragma once

#include <zel/HostExport.h>

#include <optional>

namespace zel::common {

/// Reports whether the machine runs in FIPS mode. Called on every read of a value, so the mode is read once and cached.
class LUMORA_HOST_API FipsUtils {
public:
    static bool isFipsEnabled() noexcept;
    /// Replaces the mode of the machine; nullopt reads it from the machine again. For embedding programs and tests.
    static void overrideFipsMode(std::optional<bool> enabled) noexcept;
};

} // namespace zel::common
