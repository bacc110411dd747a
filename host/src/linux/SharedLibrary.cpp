#include <kyr/SharedLibrary.h>

#include <dlfcn.h>

#include <stdexcept>

namespace KyrCoreUtils {

namespace {

[[noreturn]] void refuse() {
    const char* const reason = dlerror();
    throw std::runtime_error(reason == nullptr ? "unknown error" : reason);
}

} // namespace

SharedLibrary::SharedLibrary(const std::string& path) : handle(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (handle == nullptr) {
        refuse();
    }
}

void* SharedLibrary::find(const std::string& symbol) const {
    void* const address = dlsym(handle, symbol.c_str());
    if (address == nullptr) {
        refuse();
    }
    return address;
}

} // namespace KyrCoreUtils
