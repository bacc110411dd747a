#include "DirectoryDigest.h"

#include "kyr/HexDigits.h"

#include <openssl/sha.h>

#include <array>
#include <filesystem>
#include <system_error>

namespace zel::platform {

namespace {

std::string settledPath(const std::string& directory) {
    std::error_code failure;
    auto path = std::filesystem::weakly_canonical(std::filesystem::absolute(directory, failure), failure);
    if (failure) {
        return directory;
    }
    return (path.has_filename() ? path : path.parent_path()).string();
}

} // namespace

std::string digestDirectory(const std::string& directory) {
    const auto path = settledPath(directory);
    std::array<unsigned char, SHA256_DIGEST_LENGTH> digest{};
    SHA256(reinterpret_cast<const unsigned char*>(path.data()), path.size(), digest.data());
    std::string digits;
    for (std::size_t i = 0; i < digest.size() / 2; ++i) {
        KyrCoreUtils::appendHex(digits, digest[i]);
    }
    return digits;
}

} // namespace zel::platform
