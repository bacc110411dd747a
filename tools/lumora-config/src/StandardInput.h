#pragma once

#include <array>
#include <streambuf>

namespace lumora_config {

/// Standard input as a stream buffer that ends as soon as a signal asks the program to end. Main thread.
class StandardInput final : public std::streambuf {
private:
    int_type underflow() override;

    std::array<char, 4096> buffer{};
};

} // namespace lumora_config
