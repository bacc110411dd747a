#include "zel/FipsMode.h"

#include <fcntl.h>
#include <unistd.h>

namespace zel::common {

bool readFipsMode() noexcept {
    const int file = ::open("/proc/sys/crypto/fips_enabled", O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        return false;
    }
    char first = '0';
    const bool read = ::read(file, &first, 1) == 1;
    ::close(file);
    return read && first == '1';
}

} // namespace zel::common
