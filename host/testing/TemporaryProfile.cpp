#include "TemporaryProfile.h"

#include <kyr/FileUtils.h>

#include <fstream>
#include <iterator>
#include <random>

namespace testing_host {

TemporaryProfile::TemporaryProfile() {
    std::random_device random;
    do {
        base = std::filesystem::temp_directory_path() / ("lumora-test-" + std::to_string(random()));
    } while (!std::filesystem::create_directory(base));
    for (const auto& folder : {config(), data(), state(), resources()}) {
        std::filesystem::create_directory(folder);
    }
    KyrCoreUtils::FileUtils::overrideDirectories(
        {config().string(), data().string(), state().string(), resources().string()});
}

TemporaryProfile::~TemporaryProfile() {
    KyrCoreUtils::FileUtils::overrideDirectories({});
    std::error_code ignored;
    std::filesystem::remove_all(base, ignored);
}

std::string readFile(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

void writeFile(const std::filesystem::path& path, std::string_view content) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    stream.write(content.data(), static_cast<std::streamsize>(content.size()));
}

} // namespace testing_host
