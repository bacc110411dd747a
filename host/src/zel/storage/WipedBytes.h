#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zel::storage {

/// A fixed number of clear-text bytes, zeroed before they are freed.
class WipedBytes {
public:
    explicit WipedBytes(std::size_t size) : bytes(size) {}
    ~WipedBytes();
    WipedBytes(const WipedBytes&) = delete;
    WipedBytes& operator=(const WipedBytes&) = delete;

    unsigned char* data() { return bytes.data(); }
    const unsigned char* data() const { return bytes.data(); }
    std::size_t size() const { return bytes.size(); }
    std::string_view view() const { return {reinterpret_cast<const char*>(bytes.data()), bytes.size()}; }

private:
    std::vector<unsigned char> bytes;
};

/// A text whose whole allocation is zeroed before it is freed.
struct WipedText {
    WipedText() = default;
    ~WipedText();
    WipedText(const WipedText&) = delete;
    WipedText& operator=(const WipedText&) = delete;

    std::string text;
};

} // namespace zel::storage
