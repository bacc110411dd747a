#pragma once

#include <zel/HostExport.h>

#include <string>
#include <typeinfo>

namespace ZelUnified {

/// The readable name of a type, "NULL" when there is none. Stable within a run.
LUMORA_HOST_API std::string readableTypeName(const std::type_info* type);

template <class T>
std::string readableTypeName() {
    return readableTypeName(&typeid(T));
}

} // namespace ZelUnified
