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
    /// Returns the name of the user whose rights the process has, in UTF-8; "" if it is unknown.
    static std::string getUserName();
    /// Returns name, version and architecture of the operating system in UTF-8, without the name of the machine; "" if
    /// they are unknown.
    static std::string getSystemName();
    /// Returns true if standard input is a terminal.
    static bool isInputTerminal() noexcept;
};

} // namespace KyrCoreUtils
