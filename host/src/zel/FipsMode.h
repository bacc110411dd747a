#pragma once

namespace zel::common {

/// Reads the FIPS mode of the machine; returns false if it is unknown.
bool readFipsMode() noexcept;

} // namespace zel::common
