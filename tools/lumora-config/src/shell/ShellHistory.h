#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace lumora_config {

/// The lines that a person has typed, in a file with mode 0600. Main thread.
class ShellHistory {
public:
    /// Returns true if the file must not contain the line.
    using Filter = std::function<bool(const std::string& line)>;

    static constexpr std::size_t largestCount = 1000;

    /// Reads the file at `path` (UTF-8). A missing or unreadable file is an empty history.
    explicit ShellHistory(std::string path);

    /// Returns the lines, the oldest first.
    const std::vector<std::string>& getLines() const { return lines; }
    /// Adds a line, unless it equals the last one. Removes the lines that the filter matches and those beyond the
    /// largest count, and writes the file. Returns 0 or an errno value.
    int add(const std::string& line, const Filter& isSecret);

private:
    const std::string file;
    std::vector<std::string> lines;
};

} // namespace lumora_config
