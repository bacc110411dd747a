#pragma once

#include <stdexcept>
#include <string>

namespace inspection {

/// The reason why a request fails, with the exit code that the program derives from it.
class RequestError : public std::runtime_error {
public:
    enum class Code { Refused = 1, Usage = 2, Environment = 3 };

    RequestError(Code reason, const std::string& message) : std::runtime_error(message), code(reason) {}

    Code getCode() const noexcept { return code; }

private:
    Code code;
};

} // namespace inspection
