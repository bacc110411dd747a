#pragma once

#include <zel/HostExport.h>

#include <stdexcept>

namespace ZelUnified {

/// Thrown when an operation of a public object is called on another thread than the services dispatcher's. Nothing was
/// changed.
class LUMORA_HOST_API UpdateAccessError : public std::logic_error {
public:
    using std::logic_error::logic_error;
};

} // namespace ZelUnified
