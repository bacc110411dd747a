#pragma once

#include "WipeBytes.h"

#include <zel/ProtectedText.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zel {

class SecureBuffer;
struct SecureStringData;

/// A secret that is kept enciphered in memory. Copies share their content, so setting one sets all of them; set the
/// content before other threads get a copy. A failure of the cipher is not reported: isEmpty() returns true then.
class SecureString final : public storage::ProtectedText {
public:
    SecureString();
    explicit SecureString(const std::string& text);
    /// Copies only: a moved-from secret would have no content.
    SecureString(const SecureString&) = default;
    SecureString& operator=(const SecureString&) = default;
    ~SecureString() = default;

    /// Returns true if there is no usable content, also after a failure of the cipher.
    bool isEmpty() const override;
    /// Sets the content, which may contain zeros. A length of 0 only marks the secret as empty: decrypt() still returns
    /// the previous content.
    void setContent(const char* bytes, std::size_t length) override;
    void withClearText(const std::function<void(std::string_view)>& use) const override;
    /// Enciphers the content again: unlike a copy by value, the result shares nothing with this one.
    std::shared_ptr<const storage::ProtectedText> copy() const override;

    /// Decrypts the content into `buffer`. Leaves `buffer` unchanged if there is no content or the cipher fails.
    void decrypt(SecureBuffer& buffer) const;
    /// Returns the initialization vector followed by the ciphertext.
    std::vector<unsigned char> toBytes() const;
    /// Returns toBytes() in base64 without line breaks.
    std::string toBase64() const;

    /// Zeroes the characters and clears the text; keeps its allocation.
    template <class Text>
    static void wipe(Text& text) {
        wipeBytes(text.data(), text.size() * sizeof(typename Text::value_type));
        text.clear();
    }

private:
    std::shared_ptr<SecureStringData> data;
};

} // namespace zel
