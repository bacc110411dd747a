#include <kyr/ProcessUtils.h>

#include <unistd.h>

#include <array>
#include <filesystem>

namespace KyrCoreUtils {

std::string ProcessUtils::getProgramFolder() {
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::string() : program.parent_path().string();
}

std::string ProcessUtils::getHostName() {
    std::array<char, 256> name{};
    // The last byte stays 0: a name that is too long may be returned without its end.
    return gethostname(name.data(), name.size() - 1) == 0 ? std::string(name.data()) : std::string();
}

bool ProcessUtils::isInputTerminal() noexcept {
    return isatty(STDIN_FILENO) != 0;
}

} // namespace KyrCoreUtils
