#pragma once

namespace zel::common {

/// The machine's answer; false when it gives none.
bool readFipsMode() noexcept;

} // namespace zel::common
