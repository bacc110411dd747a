#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace lumora_config {

/// What the word before the cursor may become.
struct LineCompletion {
    std::size_t start = 0;            ///< The position in the line at which `text` is inserted.
    std::optional<std::string> text;  ///< Replaces the line from `start` to the cursor. Empty if nothing is added.
    std::vector<std::string> choices; ///< Shown if `text` is empty.
    bool isPath = false;              ///< The editor completes the word as a path itself.
};

/// Lets a person edit lines on the terminal. All texts are UTF-8. Main thread.
class LineEditor {
public:
    /// Receives the line up to the cursor. Must not throw.
    using Completer = std::function<LineCompletion(const std::string& line)>;

    /// Returns null if the platform has no editor, if standard input or standard error is not a terminal, or if the
    /// terminal cannot move its cursor. `pluginDirectory` is that of findInModule(). Throws Failure (Environment) if
    /// the module of the editor, or a library that it needs, is missing or cannot be loaded.
    static std::unique_ptr<LineEditor> create(const std::string& prompt, Completer completer,
                                              const std::string& pluginDirectory);

    virtual ~LineEditor() = default;

    /// Prints the prompt on standard error and returns the next line without its line feed. Returns nothing at the end
    /// of the input and as soon as EndSignals has received a signal. The terminal is in its usual mode afterwards.
    virtual std::optional<std::string> readLine() = 0;
    /// Adds a line that the person can return to.
    virtual void addToHistory(const std::string& line) = 0;
};

} // namespace lumora_config
