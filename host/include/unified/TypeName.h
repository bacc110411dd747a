#pragma once

#include <zel/HostExport.h>

#include <string>
#include <typeinfo>

namespace ZelUnified {

/// Returns the readable name of a type; "NULL" if `type` is null. The name does not change during a run.
LUMORA_HOST_API std::string readableTypeName(const std::type_info* type);

/// Returns the name, computed once per type. The string is never destroyed: threads and static objects may use it while
/// the process ends.
template <class T>
const std::string& readableTypeName() {
    static const std::string& name = *new std::string(readableTypeName(&typeid(T)));
    return name;
}

} // namespace ZelUnified
