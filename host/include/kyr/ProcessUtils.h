#pragma once

#include <zel/HostExport.h>

#include <string>

namespace KyrCoreUtils {

/// The running process. Nothing throws. Any thread.
class LUMORA_HOST_API ProcessUtils {
public:
    /// The folder in which the running program lies, UTF-8; "" when the platform can't tell.
    static std::string getProgramFolder();
    /// Somebody types what standard input reads.
    static bool isInputTerminal() noexcept;
};

} // namespace KyrCoreUtils
