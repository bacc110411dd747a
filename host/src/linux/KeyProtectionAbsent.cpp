#include "zel/storage/KeyProtection.h"

namespace zel::storage {

// The access rights of the files protect the keys here.

bool KeyProtection::isPresent() noexcept {
    return false;
}

bool KeyProtection::wrap(const MasterKey& /*key*/, std::string& /*wrapped*/) {
    return false;
}

KeyResult KeyProtection::unwrap(std::string_view /*wrapped*/, MasterKey& /*key*/) {
    return KeyResult::Malformed;
}

} // namespace zel::storage
