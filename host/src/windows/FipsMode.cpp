#include "zel/FipsMode.h"

// The others need the system's header.
// clang-format off
#include <windows.h>
#include <bcrypt.h>
// clang-format on

namespace zel::common {

bool readFipsMode() noexcept {
    BOOLEAN enabled = FALSE;
    return BCRYPT_SUCCESS(::BCryptGetFipsAlgorithmMode(&enabled)) && enabled != FALSE;
}

} // namespace zel::common
