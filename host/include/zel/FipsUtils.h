#pragma once

#include <zel/HostExport.h>

#include <optional>

namespace zel::common {

/// Whether the machine runs in FIPS mode. Asked on every read of a value, so the answer is read once and kept.
class LUMORA_HOST_API FipsUtils {
public:
    static bool isFipsEnabled() noexcept;
    /// Replaces the machine's answer; nullopt asks the machine again. For embedding programs and tests.
    static void overrideFipsMode(std::optional<bool> enabled) noexcept;
};

} // namespace zel::common
