#include "ProgramFolder.h"

#include <filesystem>

namespace lumora_config {

std::string getProgramFolder() {
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::string() : program.parent_path().string();
}

} // namespace lumora_config
