#pragma once

#include <zel/ProtectedText.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zel {

class SecureBuffer;
struct SecureStringData;

/// A secret that is not in the clear in a memory dump. Copies share their content, so setting one sets all of them;
/// fill it before it is shared between threads. Failures of the cipher are silent: isEmpty() tells.
class SecureString final : public storage::ProtectedText {
public:
    SecureString();
    explicit SecureString(const std::string& text);
    /// Copies only: a moved-from secret would have no content to share.
    SecureString(const SecureString&) = default;
    SecureString& operator=(const SecureString&) = default;
    ~SecureString() = default;

    /// True when there is no usable content, also after a failure of the cipher.
    bool isEmpty() const override;
    /// Zeros are content. A length of 0 only marks the secret as empty: decrypt() still gives what it held before.
    void setContent(const char* bytes, std::size_t length) override;
    void withClearText(const std::function<void(std::string_view)>& use) const override;
    /// Enciphers the content anew: unlike a copy by value, the result shares nothing with this one.
    std::shared_ptr<const storage::ProtectedText> copy() const override;

    /// Leaves `buffer` as it was when there is nothing to decrypt or the cipher fails.
    void decrypt(SecureBuffer& buffer) const;
    /// Initialisation vector, then ciphertext.
    std::vector<unsigned char> toBytes() const;
    /// The same in base64, without line breaks.
    std::string toBase64() const;

    /// Zeroes the text's bytes and empties it; its allocation stays.
    static void wipe(std::string& text);
    static void wipe(std::wstring& text);

private:
    std::shared_ptr<SecureStringData> data;
};

} // namespace zel
