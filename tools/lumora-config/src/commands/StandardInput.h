#pragma once

#include <array>
#include <streambuf>

namespace lumora_config {

/// A stream buffer over standard input that reports the end of the input when a signal asks the program to end. Main
/// thread.
class StandardInput final : public std::streambuf {
private:
    int_type underflow() override;

    std::array<char, 4096> buffer{};
};

} // namespace lumora_config
