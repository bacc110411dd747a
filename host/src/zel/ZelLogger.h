#pragma once

#include <string>
#include <string_view>
#include <utility>

/// A name under which lines are written; all the rest is common to the process.
class ZelLogger {
public:
    explicit ZelLogger(std::string loggerName) : name(std::move(loggerName)) {}

    const std::string& getName() const noexcept { return name; }

private:
    const std::string name;
};
