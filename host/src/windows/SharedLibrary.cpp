#include <kyr/Paths.h>
#include <kyr/SharedLibrary.h>

#include <windows.h>

#include <stdexcept>
#include <system_error>

namespace KyrCoreUtils {

namespace {

[[noreturn]] void refuse(const std::string& what) {
    const auto code = static_cast<int>(::GetLastError());
    throw std::runtime_error(what + ": " + std::system_category().message(code));
}

} // namespace

SharedLibrary::SharedLibrary(const std::string& path)
    // The system searches the folder of a library only if its path has a drive.
    : handle(::LoadLibraryExW(std::filesystem::absolute(toPath(path)).make_preferred().c_str(), nullptr,
                              LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS)) {
    if (handle == nullptr) {
        refuse(path);
    }
}

void* SharedLibrary::find(const std::string& symbol) const {
    const auto address = ::GetProcAddress(static_cast<HMODULE>(handle), symbol.c_str());
    if (address == nullptr) {
        refuse(symbol);
    }
    return reinterpret_cast<void*>(address);
}

} // namespace KyrCoreUtils
