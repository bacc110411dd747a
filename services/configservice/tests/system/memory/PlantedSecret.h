#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace memory_test {

/// A value whose parts occur nowhere by chance.
class PlantedSecret {
public:
    PlantedSecret();

    const std::wstring& text() const { return secret; }
    /// Returns its parts, each long enough to be unique: freed memory often contains only the rest of its content.
    std::vector<std::string> pieces() const;

private:
    std::wstring secret;
};

std::size_t countNarrow(const std::string& bytes, const std::string& ascii);
/// Counts occurrences as UTF-16 in both byte orders.
std::size_t countUtf16(const std::string& bytes, const std::string& ascii);
/// Counts occurrences as wide characters.
std::size_t countWide(const std::string& bytes, const std::string& ascii);

} // namespace memory_test
