#pragma once

#include <zel/HostExport.h>

#include <string>
#include <typeinfo>

namespace ZelUnified {

/// The readable name of a type, "NULL" when there is none. Stable within a run.
LUMORA_HOST_API std::string readableTypeName(const std::type_info* type);

/// Worked out once for each type. Never destroyed: threads and static objects may ask when the process ends.
template <class T>
const std::string& readableTypeName() {
    static const std::string& name = *new std::string(readableTypeName(&typeid(T)));
    return name;
}

} // namespace ZelUnified
