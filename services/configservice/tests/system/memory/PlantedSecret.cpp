#include "PlantedSecret.h"

#include <random>

namespace memory_test {

namespace {

constexpr std::size_t pieceLength = 8;
constexpr std::size_t pieceCount = 6;

} // namespace

PlantedSecret::PlantedSecret() {
    constexpr std::wstring_view letters = L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
    std::random_device random;
    while (secret.size() < pieceLength * pieceCount) {
        secret += letters[random() % letters.size()];
    }
}

std::vector<std::string> PlantedSecret::pieces() const {
    std::vector<std::string> pieces;
    const std::string narrow(secret.begin(), secret.end());
    for (std::size_t begin = 0; begin < narrow.size(); begin += pieceLength) {
        pieces.push_back(narrow.substr(begin, pieceLength));
    }
    return pieces;
}

std::size_t countNarrow(const std::string& bytes, const std::string& ascii) {
    std::size_t count = 0;
    for (auto found = bytes.find(ascii); found != std::string::npos; found = bytes.find(ascii, found + 1)) {
        ++count;
    }
    return count;
}

std::size_t countUtf16(const std::string& bytes, const std::string& ascii) {
    std::string lowFirst;
    std::string highFirst;
    for (const char letter : ascii) {
        lowFirst.append({letter, '\0'});
        highFirst.append({'\0', letter});
    }
    return countNarrow(bytes, lowFirst) + countNarrow(bytes, highFirst);
}

std::size_t countWide(const std::string& bytes, const std::string& ascii) {
    const std::wstring wide(ascii.begin(), ascii.end());
    return countNarrow(bytes, {reinterpret_cast<const char*>(wide.data()), wide.size() * sizeof(wchar_t)});
}

} // namespace memory_test
