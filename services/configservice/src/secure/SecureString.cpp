#include "SecureString.h"

#include "Base64Encoding.h"
#include "CipherKey.h"
#include "SecureBuffer.h"
#include "SecureStringData.h"
#include "WipeBytes.h"

#include <openssl/evp.h>
#include <openssl/rand.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

namespace zel {

namespace {

constexpr std::size_t ivBytes = 16;
constexpr std::size_t cipherSlack = 32;
constexpr unsigned char filler = 0xFF;
constexpr auto cipherLimit = static_cast<std::size_t>(std::numeric_limits<int>::max());

using CipherContext = std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)>;

/// A byte buffer that is zeroed before it is freed.
class ScratchBytes {
public:
    explicit ScratchBytes(std::size_t size) : bytes(size, filler) {}
    ~ScratchBytes() { wipeBytes(bytes.data(), bytes.size()); }
    ScratchBytes(const ScratchBytes&) = delete;
    ScratchBytes& operator=(const ScratchBytes&) = delete;

    unsigned char* data() { return bytes.data(); }

private:
    std::vector<unsigned char> bytes;
};

/// Fills `data.cipherText`. Returns false on failure and leaves its length unchanged.
bool encipher(const char* bytes, std::size_t length, const CipherKey& key, SecureStringData& data) {
    if (length > cipherLimit) {
        return false;
    }
    const CipherContext context(EVP_CIPHER_CTX_new(), &EVP_CIPHER_CTX_free);
    int updated = 0;
    int finished = 0;
    const bool done = context && EVP_CIPHER_CTX_reset(context.get()) == 1 &&
                      EVP_EncryptInit_ex(context.get(), EVP_aes_256_cbc(), nullptr, key.data(), data.iv.get()) == 1 &&
                      EVP_EncryptUpdate(context.get(), data.cipherText.get(), &updated,
                                        reinterpret_cast<const unsigned char*>(bytes), static_cast<int>(length)) == 1 &&
                      EVP_EncryptFinal_ex(context.get(), data.cipherText.get() + updated, &finished) == 1;
    if (done) {
        data.cipherTextLength = static_cast<std::size_t>(updated) + static_cast<std::size_t>(finished);
    }
    return done;
}

/// Writes the clear bytes to `output`, which must have the size of the whole ciphertext, and their number to the out
/// parameter. Returns false on failure.
bool decipher(const SecureStringData& data, unsigned char* output, std::size_t& length) {
    if (data.cipherTextLength > cipherLimit) {
        return false;
    }
    const CipherKey key;
    const CipherContext context(EVP_CIPHER_CTX_new(), &EVP_CIPHER_CTX_free);
    int updated = 0;
    int finished = 0;
    const bool done = context &&
                      EVP_DecryptInit_ex(context.get(), EVP_aes_256_cbc(), nullptr, key.data(), data.iv.get()) == 1 &&
                      EVP_DecryptUpdate(context.get(), output, &updated, data.cipherText.get(),
                                        static_cast<int>(data.cipherTextLength)) == 1 &&
                      EVP_DecryptFinal_ex(context.get(), output + updated, &finished) == 1;
    length = static_cast<std::size_t>(updated) + static_cast<std::size_t>(finished);
    return done;
}

} // namespace

SecureString::SecureString() : data(std::make_shared<SecureStringData>()) {}

SecureString::SecureString(const std::string& text) : SecureString() {
    setContent(text.data(), text.size());
}

bool SecureString::isEmpty() const {
    return data->empty;
}

void SecureString::setContent(const char* bytes, std::size_t length) {
    if (bytes == nullptr) {
        return;
    }
    data->empty = length == 0;
    if (data->empty) {
        return;
    }
    const CipherKey key;
    data->wipeIv();
    // The result is ignored on purpose: with an initialization vector of zeros the secret is still enciphered.
    data->iv = std::make_unique<unsigned char[]>(ivBytes);
    data->ivLength = ivBytes;
    RAND_bytes(data->iv.get(), static_cast<int>(ivBytes));

    data->wipeCipherText();
    data->cipherText.reset(new unsigned char[length + cipherSlack]);
    data->cipherTextLength = length + cipherSlack;
    std::fill_n(data->cipherText.get(), data->cipherTextLength, filler);
    if (!encipher(bytes, length, key, *data)) {
        data->empty = true;
    }
}

void SecureString::withClearText(const std::function<void(std::string_view)>& use) const {
    if (data->empty) {
        return;
    }
    SecureBuffer clear;
    decrypt(clear);
    if (clear.getLength() != 0) {
        use({clear.getData(), clear.getLength()});
    }
}

std::shared_ptr<const storage::ProtectedText> SecureString::copy() const {
    const auto copied = std::make_shared<SecureString>();
    withClearText([&](std::string_view clear) { copied->setContent(clear.data(), clear.size()); });
    return copied;
}

void SecureString::decrypt(SecureBuffer& buffer) const {
    if (data->cipherTextLength == 0) {
        return;
    }
    ScratchBytes output(data->cipherTextLength);
    std::size_t length = 0;
    if (!decipher(*data, output.data(), length)) {
        return;
    }
    auto clear = std::make_unique_for_overwrite<char[]>(length + 1);
    std::memcpy(clear.get(), output.data(), length);
    clear[length] = '\0';
    buffer.set(std::move(clear), static_cast<std::uint32_t>(length));
}

std::vector<unsigned char> SecureString::toBytes() const {
    std::vector<unsigned char> bytes;
    if (data->empty) {
        return bytes;
    }
    bytes.reserve(data->ivLength + data->cipherTextLength);
    bytes.insert(bytes.end(), data->iv.get(), data->iv.get() + data->ivLength);
    bytes.insert(bytes.end(), data->cipherText.get(), data->cipherText.get() + data->cipherTextLength);
    return bytes;
}

std::string SecureString::toBase64() const {
    const std::vector<unsigned char> bytes = toBytes();
    return Base64Encoding::instance().encode(bytes.data(), bytes.size(), Encoding::LineBreaks::None);
}

} // namespace zel
