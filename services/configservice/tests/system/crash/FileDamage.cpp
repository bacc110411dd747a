#include "FileDamage.h"

#include <TemporaryProfile.h>

#include <algorithm>
#include <string>

namespace crash_test {

namespace {

void flip(std::string& bytes, std::mt19937& random) {
    for (auto left = 1 + random() % 8; left > 0; --left) {
        char& byte = bytes.at(random() % bytes.size());
        byte = static_cast<char>(byte ^ static_cast<char>(1U << random() % 8));
    }
}

void zero(std::string& bytes, std::mt19937& random) {
    const std::size_t begin = random() % bytes.size();
    const std::size_t length = 1 + random() % (bytes.size() - begin);
    std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(begin), length, '\0');
}

} // namespace

void damage(const std::filesystem::path& path, std::mt19937& random) {
    const std::string before = testing_host::readFile(path);
    std::string bytes = before;
    // Flips may cancel each other out, and zeroes may overwrite zeroes.
    while (bytes == before) {
        switch (random() % 3) {
        case 0:
            flip(bytes, random);
            break;
        case 1:
            bytes.resize(random() % bytes.size());
            break;
        default:
            zero(bytes, random);
            break;
        }
    }
    testing_host::writeFile(path, bytes);
}

} // namespace crash_test
