#include "DirectoryDigest.h"

#include "kyr/HexDigits.h"

#include <openssl/sha.h>

#include <array>
#include <filesystem>
#include <system_error>

namespace zel::platform {

namespace {

using Digest = std::array<unsigned char, SHA256_DIGEST_LENGTH>;

/// The block functions need none of OpenSSL's providers. SHA256() would load them all, a fifth of the time of a process
/// that reads one key.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
Digest digestOf(const std::string& text) {
    Digest digest{};
    SHA256_CTX context{};
    SHA256_Init(&context);
    SHA256_Update(&context, text.data(), text.size());
    SHA256_Final(digest.data(), &context);
    return digest;
}
#pragma GCC diagnostic pop

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
    const auto digest = digestOf(settledPath(directory));
    std::string digits;
    for (std::size_t i = 0; i < digest.size() / 2; ++i) {
        KyrCoreUtils::appendHex(digits, digest[i]);
    }
    return digits;
}

} // namespace zel::platform
