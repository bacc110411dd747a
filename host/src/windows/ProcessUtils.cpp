#include <kyr/ProcessUtils.h>
#include <kyr/StringUtils.h>

#include <io.h>
#include <stdio.h>
#include <windows.h>

#include <filesystem>

namespace KyrCoreUtils {

std::string ProcessUtils::getProgramFolder() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const auto length = ::GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        if (length == 0) {
            return {};
        }
        if (length < path.size()) {
            path.resize(length);
            return toString(std::filesystem::path(path).parent_path().wstring());
        }
        path.resize(path.size() * 2);
    }
}

std::string ProcessUtils::getHostName() {
    std::wstring name(MAX_PATH, L'\0');
    auto length = static_cast<DWORD>(name.size());
    if (::GetComputerNameExW(ComputerNameDnsHostname, name.data(), &length) == 0) {
        return {};
    }
    return toString(std::wstring_view(name).substr(0, length));
}

bool ProcessUtils::isInputTerminal() noexcept {
    return ::_isatty(::_fileno(stdin)) != 0;
}

} // namespace KyrCoreUtils
