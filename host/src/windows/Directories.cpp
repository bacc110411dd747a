#include "kyr/PathText.h"
#include "kyr/PlatformFiles.h"

// The others need the system's header.
// clang-format off
#include <windows.h>
#include <knownfolders.h>
#include <shlobj.h>
// clang-format on

#include <memory>
#include <vector>

namespace fs = std::filesystem;

namespace KyrCoreUtils::platform {

namespace {

fs::path knownFolder(const KNOWNFOLDERID& id) {
    PWSTR text = nullptr;
    const HRESULT result = ::SHGetKnownFolderPath(id, KF_FLAG_DEFAULT, nullptr, &text);
    // Must be freed even if the call failed.
    const std::unique_ptr<wchar_t, decltype(&::CoTaskMemFree)> owner(text, &::CoTaskMemFree);
    return SUCCEEDED(result) ? fs::path(text) : fs::path();
}

std::string below(const fs::path& base, const wchar_t* leaf) {
    return base.empty() ? std::string() : textFromPath(base / leaf);
}

/// Returns the folder of this library.
fs::path moduleFolder() {
    HMODULE module = nullptr;
    if (::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                             reinterpret_cast<LPCWSTR>(&defaultDirectories), &module) == FALSE) {
        return {};
    }
    std::vector<wchar_t> name(32768);
    const DWORD length = ::GetModuleFileNameW(module, name.data(), static_cast<DWORD>(name.size()));
    return fs::path(name.data(), name.data() + length).parent_path();
}

} // namespace

fs::path homeDirectory() {
    return knownFolder(FOLDERID_Profile);
}

HostDirectories defaultDirectories() {
    const fs::path local = knownFolder(FOLDERID_LocalAppData);
    return {below(knownFolder(FOLDERID_RoamingAppData), L"Lumora\\Config"), below(local, L"Lumora"),
            below(local, L"Lumora\\State"), textFromPath(moduleFolder())};
}

} // namespace KyrCoreUtils::platform
