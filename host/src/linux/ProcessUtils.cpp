#include <kyr/ProcessUtils.h>

#include <unistd.h>

#include <filesystem>

namespace KyrCoreUtils {

std::string ProcessUtils::getProgramFolder() {
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::string() : program.parent_path().string();
}

bool ProcessUtils::isInputTerminal() noexcept {
    return isatty(STDIN_FILENO) != 0;
}

} // namespace KyrCoreUtils
