#include <kyr/ProcessUtils.h>

#include <pwd.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <vector>

namespace KyrCoreUtils {

namespace {

/// Returns the name of the distribution with its version; "" if it is unknown.
std::string getDistribution() {
    constexpr std::string_view field = "PRETTY_NAME=";
    std::ifstream release("/etc/os-release");
    for (std::string line; std::getline(release, line);) {
        if (line.starts_with(field)) {
            line.erase(0, field.size());
            std::erase(line, '"');
            return line;
        }
    }
    return {};
}

} // namespace

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
    passwd entry{};
    passwd* found = nullptr;
    const bool isKnown = ::getpwuid_r(::geteuid(), &entry, buffer.data(), buffer.size(), &found) == 0;
    return isKnown && found != nullptr ? std::string(found->pw_name) : std::string();
}

std::string ProcessUtils::getSystemName() {
    utsname system{};
    if (::uname(&system) != 0) {
        return {};
    }
    auto name = std::string(system.sysname) + ' ' + system.release + ' ' + system.machine;
    if (const auto distribution = getDistribution(); !distribution.empty()) {
        name += ", " + distribution;
    }
    return name;
}

bool ProcessUtils::isInputTerminal() noexcept {
    return isatty(STDIN_FILENO) != 0;
}

} // namespace KyrCoreUtils
