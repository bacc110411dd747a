#include "PlatformResources.h"

#include <windows.h>

#include <memory>
#include <type_traits>

namespace testing_host {

std::optional<std::string> readPlatformResource(const std::filesystem::path& library, const std::wstring& type,
                                                const std::wstring& name) {
    const std::unique_ptr<std::remove_pointer_t<HMODULE>, decltype(&::FreeLibrary)> module(
        ::LoadLibraryExW(library.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE), &::FreeLibrary);
    if (!module) {
        return std::nullopt;
    }
    const HRSRC found = ::FindResourceW(module.get(), name.c_str(), type.c_str());
    const HGLOBAL loaded = found != nullptr ? ::LoadResource(module.get(), found) : nullptr;
    if (loaded == nullptr) {
        return std::nullopt;
    }
    const auto* const bytes = static_cast<const char*>(::LockResource(loaded));
    return std::string(bytes, ::SizeofResource(module.get(), found));
}

} // namespace testing_host
