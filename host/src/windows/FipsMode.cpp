#include "zel/FipsMode.h"

// clang-format off: the system's header goes first
#include <bcrypt.h>
#include <windows.h>
// clang-format on

namespace zel::common {

bool readFipsMode() noexcept {
    BOOLEAN enabled = FALSE;
    return BCRYPT_SUCCESS(::BCryptGetFipsAlgorithmMode(&enabled)) && enabled != FALSE;
}

} // namespace zel::common
