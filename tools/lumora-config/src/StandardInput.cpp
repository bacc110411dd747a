#include "StandardInput.h"

#include <kyr/EndSignals.h>

namespace lumora_config {

StandardInput::int_type StandardInput::underflow() {
    const auto length = KyrCoreUtils::EndSignals::readInput(buffer.data(), buffer.size());
    if (length == 0) {
        return traits_type::eof();
    }
    setg(buffer.data(), buffer.data(), buffer.data() + length);
    return traits_type::to_int_type(buffer.front());
}

} // namespace lumora_config
