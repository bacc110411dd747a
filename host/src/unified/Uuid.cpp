#include "Uuid.h"

#include "kyr/HexDigits.h"

#include <openssl/rand.h>

#include <array>
#include <cstddef>
#include <stdexcept>

namespace ZelUnified {

std::string makeRandomUuid() {
    std::array<unsigned char, 16> bytes{};
    if (RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) != 1) {
        throw std::runtime_error("no random bytes for a UUID");
    }
    bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0f) | 0x40); // version 4
    bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3f) | 0x80); // variant of RFC 4122

    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) {
            text += '-';
        }
        KyrCoreUtils::appendHex(text, bytes[i]);
    }
    return text;
}

} // namespace ZelUnified
