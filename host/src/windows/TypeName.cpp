#include <unified/TypeName.h>

#include <cxxabi.h>

#include <cstdlib>
#include <memory>

namespace ZelUnified {

std::string readableTypeName(const std::type_info* type) {
    constexpr auto missing = "NULL";
    if (type == nullptr) {
        return missing;
    }
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> name(abi::__cxa_demangle(type->name(), nullptr, nullptr, &status),
                                                           &std::free);
    return status == 0 && name ? name.get() : missing;
}

} // namespace ZelUnified
