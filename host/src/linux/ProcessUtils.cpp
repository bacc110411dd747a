#include <kyr/ProcessUtils.h>

#include <pwd.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <vector>

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

std::string ProcessUtils::getUserName() {
    std::vector<char> buffer(16384);
    passwd record{};
    passwd* found = nullptr;
    if (::getpwuid_r(::geteuid(), &record, buffer.data(), buffer.size(), &found) != 0 || found == nullptr) {
        return {};
    }
    return found->pw_name;
}

bool ProcessUtils::isInputTerminal() noexcept {
    return isatty(STDIN_FILENO) != 0;
}

} // namespace KyrCoreUtils
