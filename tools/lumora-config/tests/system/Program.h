#pragma once

#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace program_test {

/// The result of a finished process.
struct Outcome {
    int exitCode = -1; ///< 128 plus the signal's number if a signal ended the process.
    std::string out;
    std::string error;

    /// Returns one parsed object per line of the output.
    std::vector<nlohmann::json> lines() const;
};

/// Returns the names in the answer of `stores`, in chain order.
std::vector<std::string> storeNames(const nlohmann::json& answer);

using Arguments = std::vector<std::string>;

/// Returns the number of the first line that contains the text; 0 if none does.
std::size_t lineOf(const std::filesystem::path& file, std::string_view text);

/// Returns the beginning of the origin of a value that Profile::writePolicy() has set.
std::string originOfPolicy();

/// Runs a program with `input` on its standard input and waits for its end. The program gets the environment of the
/// test, without colours.
Outcome runProcess(const std::string& program, const Arguments& arguments, const std::string& input = {});

/// A temporary profile with the sample's defaults file. The destructor removes it.
class Profile {
public:
    Profile();
    ~Profile();
    Profile(const Profile&) = delete;
    Profile& operator=(const Profile&) = delete;

    std::filesystem::path root() const { return base; }
    std::filesystem::path defaultsFile() const { return base / "resources" / "lumora-config-defaults.xml"; }
    /// Writes a file to the profile's folder and returns its path with "/" as separator, so that it can be a word of
    /// the shell.
    std::string write(const std::string& name, std::string_view content) const;
    /// Writes a document of one group with these elements and returns its path.
    std::string writeDocument(const std::string& name, std::string_view elements) const;
    /// Sets a value in the current user's policy.
    void writePolicy(const std::string& name, const std::string& value) const;
    /// Removes what writePolicy() has set.
    void removePolicy() const;

    /// lumora-config --profile ROOT ARGUMENTS.
    Outcome run(const Arguments& arguments, const std::string& input = {}) const;
    /// Runs the shell with these input lines.
    Outcome shell(const Arguments& lines, const Arguments& options = {}) const;

private:
    struct Policy;

    std::filesystem::path base;
    /// What must be removed with the profile because it is outside of its folder; null if there is nothing.
    mutable std::shared_ptr<Policy> policy;
};

/// A running shell with JSON answers. The destructor ends it.
class RunningShell {
public:
    /// Starts the shell and waits until it has answered its first command.
    explicit RunningShell(const Profile& profile);
    ~RunningShell();
    RunningShell(const RunningShell&) = delete;
    RunningShell& operator=(const RunningShell&) = delete;

    int getProcess() const;
    void send(const std::string& line) const;
    /// Waits for the next object and returns it. Throws std::runtime_error at the end of the output.
    nlohmann::json receive() const;
    /// Waits until there is output to receive.
    void awaitOutput() const;
    void signal(int number) const;
    /// Sends the signal repeatedly until the process has ended, without reading its output. Returns the exit code as in
    /// Outcome, or -1 if the process has not ended after ten seconds.
    int signalUntilEnd(int number);
    /// Waits for the end of the process and discards its remaining output. Returns the exit code as in Outcome.
    int waitForEnd();

private:
    struct Process;

    std::unique_ptr<Process> process;
};

} // namespace program_test
