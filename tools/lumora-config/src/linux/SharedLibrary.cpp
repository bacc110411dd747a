#include "SharedLibrary.h"

#include "Failure.h"

#include <dlfcn.h>

namespace lumora_config {

namespace {

[[noreturn]] void refuse() {
    const char* reason = dlerror();
    throw Failure(ExitCode::Environment, reason == nullptr ? "a library can't be loaded" : reason);
}

} // namespace

SharedLibrary::SharedLibrary(const std::string& path) : handle(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (handle == nullptr) {
        refuse();
    }
}

void* SharedLibrary::find(const std::string& symbol) const {
    void* address = dlsym(handle, symbol.c_str());
    if (address == nullptr) {
        refuse();
    }
    return address;
}

} // namespace lumora_config
