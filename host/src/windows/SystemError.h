#pragma once

#include <string>

namespace zel::platform {

/// Returns the errno value of an error code of the system; EIO if none fits.
int errnoOf(unsigned long systemError) noexcept;
/// Returns the errno value of the error that the last call of this thread recorded.
int lastErrno() noexcept;

} // namespace zel::platform
