#pragma once

#include <cstddef>
#include <string>

namespace ZelUnified {

/// A text that is zeroed before its memory is freed or used for another text. Not encrypted.
class WipedText {
public:
    WipedText() = default;
    WipedText(const char* secret) : text(secret) {} // NOLINT(google-explicit-constructor): converts like a string
    WipedText(std::string secret) {                 // NOLINT(google-explicit-constructor)
        text.swap(secret);
        wipe(secret);
    }
    WipedText(const WipedText&) = default;
    WipedText(WipedText&& other) noexcept {
        text.swap(other.text);
        wipe(other.text);
    }
    WipedText& operator=(WipedText other) noexcept {
        text.swap(other.text);
        return *this;
    }
    ~WipedText() { wipe(text); }

    const std::string& get() const { return text; }
    bool isEmpty() const { return text.empty(); }

    bool operator==(const WipedText&) const = default;

    /// Zeroes the whole memory of the text, and clears the text.
    template <class Text>
    static void wipe(Text& wiped) noexcept {
        wiped.resize(wiped.capacity()); // a short text stays behind a swap, beyond the end
        // A compiler may leave out an ordinary write to memory that is freed afterwards.
        volatile auto* const characters = wiped.data();
        for (std::size_t index = 0; index < wiped.size(); ++index) {
            characters[index] = {};
        }
        wiped.clear();
    }

private:
    std::string text;
};

} // namespace ZelUnified
