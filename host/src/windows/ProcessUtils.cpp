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

std::string ProcessUtils::getUserName() {
    std::wstring name(257, L'\0'); // the longest name and its terminator
    auto length = static_cast<DWORD>(name.size());
    if (::GetUserNameW(name.data(), &length) == 0 || length == 0) {
        return {};
    }
    return toString(std::wstring_view(name).substr(0, length - 1)); // the length includes the terminator
}

std::string ProcessUtils::getSystemName() {
    // The documented calls return the version that the program was written for.
    using GetVersion = LONG(WINAPI*)(OSVERSIONINFOW*);
    const auto library = ::GetModuleHandleW(L"ntdll.dll");
    const auto getVersion =
        library == nullptr
            ? nullptr
            : reinterpret_cast<GetVersion>(reinterpret_cast<void*>(::GetProcAddress(library, "RtlGetVersion")));
    OSVERSIONINFOW version{};
    version.dwOSVersionInfoSize = sizeof(version);
    if (getVersion == nullptr || getVersion(&version) != 0) {
        return {};
    }
    SYSTEM_INFO system{};
    ::GetNativeSystemInfo(&system);
    const bool isArm = system.wProcessorArchitecture == PROCESSOR_ARCHITECTURE_ARM64;
    const bool isIntel = system.wProcessorArchitecture == PROCESSOR_ARCHITECTURE_AMD64;
    return "Windows " + std::to_string(version.dwMajorVersion) + '.' + std::to_string(version.dwMinorVersion) + '.' +
           std::to_string(version.dwBuildNumber) +
           (isArm     ? " ARM64"
            : isIntel ? " x86_64"
                      : "");
}

bool ProcessUtils::isInputTerminal() noexcept {
    return ::_isatty(::_fileno(stdin)) != 0;
}

} // namespace KyrCoreUtils
