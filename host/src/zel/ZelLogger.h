#pragma once

#include <string>
#include <string_view>
#include <utility>

/// A named logger. All other logging state is shared by the process.
class ZelLogger {
public:
    explicit ZelLogger(std::string loggerName) : name(std::move(loggerName)) {}

    const std::string& getName() const noexcept { return name; }

private:
    const std::string name;
};
