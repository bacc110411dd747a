#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace memory_test {

/// A value that occurs nowhere by chance, not even a part of it.
class PlantedSecret {
public:
    PlantedSecret();

    const std::wstring& text() const { return secret; }
    /// Its parts, each long enough to be telling: freed memory often keeps but the rest of what it held.
    std::vector<std::string> pieces() const;

private:
    std::wstring secret;
};

std::size_t countNarrow(const std::string& bytes, const std::string& ascii);
/// In both orders of bytes.
std::size_t countUtf16(const std::string& bytes, const std::string& ascii);
/// As wide characters.
std::size_t countWide(const std::string& bytes, const std::string& ascii);

} // namespace memory_test
