#include "ConfigChange.h"

#include "secure/SecureString.h"

namespace ZelUnified {

ConfigChange::~ConfigChange() {
    zel::SecureString::wipe(value);
    zel::SecureString::wipe(originalValue);
}

} // namespace ZelUnified
