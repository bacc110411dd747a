#pragma once

#include <zel/HostExport.h>

#include <string>

namespace KyrCoreUtils {

/// Information on the running process. Never throws. Any thread.
class LUMORA_HOST_API ProcessUtils {
public:
    /// Returns the folder of the running program in UTF-8; "" if it is unknown.
    static std::string getProgramFolder();
    /// Returns the name of the machine in UTF-8; "" if it is unknown.
    static std::string getHostName();
    /// Returns the name of the account that runs the process in UTF-8; "" if it is unknown.
    static std::string getUserName();
    /// Returns true if standard input is a terminal.
    static bool isInputTerminal() noexcept;
};

} // namespace KyrCoreUtils
