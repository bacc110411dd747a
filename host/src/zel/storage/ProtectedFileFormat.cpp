#include "ProtectedFileFormat.h"

#include "WipedBytes.h"

#include <openssl/evp.h>
#include <openssl/rand.h>

#include <algorithm>
#include <memory>
#include <span>

namespace zel::storage {

namespace {

using CipherContext = std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)>;

constexpr std::string_view magic = "LUMS";
constexpr char currentVersion = 1;
constexpr std::size_t versionAt = 4;
constexpr std::size_t categoryAt = 5;
constexpr std::size_t reservedAt = 6;
constexpr std::size_t keyIdAt = 8;
constexpr std::size_t saltAt = 16;
constexpr std::size_t saltLength = 16;
constexpr std::size_t nonceAt = 32;
constexpr std::size_t fileKeyLength = 32;
constexpr std::size_t overhead = ProtectedFileFormat::headerLength + ProtectedFileFormat::tagLength;

const unsigned char* at(std::string_view bytes, std::size_t position) {
    return reinterpret_cast<const unsigned char*>(bytes.data() + position);
}

unsigned char* at(std::string& bytes, std::size_t position) {
    return reinterpret_cast<unsigned char*>(bytes.data() + position);
}

char codeOf(FileCategoryType::FileCategory category) {
    return static_cast<char>(category);
}

bool deriveFileKey(const MasterKey& key, std::string_view file, WipedBytes& fileKey) {
    std::string purpose = "lumora-file";
    purpose += file[versionAt];
    purpose += file[categoryAt];
    return deriveKey(key, {at(file, saltAt), saltLength}, purpose, {fileKey.data(), fileKey.size()});
}

/// All before the ciphertext.
bool fillHeader(std::string& file, FileCategoryType::FileCategory category, const MasterKey& key) {
    KeyId id{};
    if (!deriveKeyId(key, id)) {
        return false;
    }
    std::copy(magic.begin(), magic.end(), file.begin());
    file[versionAt] = currentVersion;
    file[categoryAt] = codeOf(category);
    std::copy(id.begin(), id.end(), at(file, keyIdAt));
    constexpr int randomLength = static_cast<int>(ProtectedFileFormat::headerLength - saltAt);
    return RAND_bytes(at(file, saltAt), randomLength) == 1;
}

bool encipher(std::string& file, std::string_view clear, const MasterKey& key) {
    WipedBytes fileKey(fileKeyLength);
    const CipherContext context(EVP_CIPHER_CTX_new(), &EVP_CIPHER_CTX_free);
    constexpr int headerLength = static_cast<int>(ProtectedFileFormat::headerLength);
    constexpr int tagLength = static_cast<int>(ProtectedFileFormat::tagLength);
    unsigned char* const ciphertext = at(file, ProtectedFileFormat::headerLength);
    int count = 0;
    return context && deriveFileKey(key, file, fileKey) &&
           EVP_EncryptInit_ex(context.get(), EVP_aes_256_gcm(), nullptr, fileKey.data(), at(file, nonceAt)) == 1 &&
           EVP_EncryptUpdate(context.get(), nullptr, &count, at(file, 0), headerLength) == 1 &&
           EVP_EncryptUpdate(context.get(), ciphertext, &count, at(clear, 0), static_cast<int>(clear.size())) == 1 &&
           EVP_EncryptFinal_ex(context.get(), ciphertext + count, &count) == 1 &&
           EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_AEAD_GET_TAG, tagLength, ciphertext + clear.size()) == 1;
}

/// False unless the whole file is what was written; `clear` must not be looked at then.
bool decipher(std::string_view file, const MasterKey& key, WipedBytes& clear) {
    WipedBytes fileKey(fileKeyLength);
    const CipherContext context(EVP_CIPHER_CTX_new(), &EVP_CIPHER_CTX_free);
    constexpr int headerLength = static_cast<int>(ProtectedFileFormat::headerLength);
    constexpr int tagLength = static_cast<int>(ProtectedFileFormat::tagLength);
    std::string tag(file.substr(file.size() - ProtectedFileFormat::tagLength));
    int count = 0;
    return context && deriveFileKey(key, file, fileKey) &&
           EVP_DecryptInit_ex(context.get(), EVP_aes_256_gcm(), nullptr, fileKey.data(), at(file, nonceAt)) == 1 &&
           EVP_DecryptUpdate(context.get(), nullptr, &count, at(file, 0), headerLength) == 1 &&
           EVP_DecryptUpdate(context.get(), clear.data(), &count, at(file, ProtectedFileFormat::headerLength),
                             static_cast<int>(clear.size())) == 1 &&
           EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_AEAD_SET_TAG, tagLength, tag.data()) == 1 &&
           EVP_DecryptFinal_ex(context.get(), clear.data() + count, &count) == 1;
}

} // namespace

std::optional<std::string> ProtectedFileFormat::seal(std::string_view clear, FileCategoryType::FileCategory category,
                                                     const MasterKey& key) {
    if (clear.empty() || clear.size() > maximumFileLength - overhead) {
        return std::nullopt;
    }
    std::string file(clear.size() + overhead, '\0');
    if (!fillHeader(file, category, key) || !encipher(file, clear, key)) {
        return std::nullopt;
    }
    return file;
}

bool ProtectedFileFormat::hasMagic(std::string_view file) {
    return file.starts_with(magic);
}

ReadOutcome ProtectedFileFormat::inspect(std::string_view file, FileCategoryType::FileCategory category) {
    if (file.size() < overhead) {
        return {ReadResult::Damaged, "too short"};
    }
    if (!hasMagic(file)) {
        return {ReadResult::Damaged, "not a protected file"};
    }
    if (file[versionAt] != currentVersion) {
        return {ReadResult::Unreadable, "of an unknown version"};
    }
    if (file[categoryAt] != codeOf(category)) {
        return {ReadResult::WrongKey, "of another category"};
    }
    if (file[reservedAt] != 0 || file[reservedAt + 1] != 0) {
        return {ReadResult::Damaged, "header out of order"};
    }
    return {};
}

ReadOutcome ProtectedFileFormat::open(std::string_view file, FileCategoryType::FileCategory category,
                                      const MasterKey& key, const std::function<void(std::string_view)>& use) {
    if (const ReadOutcome seen = inspect(file, category); seen.result != ReadResult::Ok) {
        return seen;
    }
    KeyId id{};
    if (!deriveKeyId(key, id)) {
        return {ReadResult::Unreadable, "no key derivation"};
    }
    if (!std::equal(id.begin(), id.end(), at(file, keyIdAt))) {
        return {ReadResult::WrongKey, "of another key"};
    }
    WipedBytes clear(file.size() - overhead);
    if (!decipher(file, key, clear)) {
        return {ReadResult::Damaged, "changed since it was written"};
    }
    if (clear.size() == 0) {
        return {ReadResult::Empty, "without content"};
    }
    use(clear.view());
    return {};
}

} // namespace zel::storage
