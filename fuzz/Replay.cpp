// Passes every file of the given folders to a fuzz target, so that its corpus is an ordinary test.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

// libFuzzer prescribes the name.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size); // NOLINT(readability-identifier-naming)

namespace {

std::size_t replayFolder(const std::filesystem::path& folder) {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        std::ifstream stream(entry.path(), std::ios::binary);
        const std::string bytes((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
        std::cout << entry.path().filename().string() << '\n';
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
        ++count;
    }
    return count;
}

} // namespace

int main(int argc, char** argv) {
    std::size_t count = 0;
    for (int i = 1; i < argc; ++i) {
        count += replayFolder(argv[i]);
    }
    return count > 0 ? 0 : 1;
}
