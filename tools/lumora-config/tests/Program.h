#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace program_test {

/// What a finished process left behind.
struct Outcome {
    int exitCode = -1; ///< 128 and the signal's number when a signal ended it.
    std::string out;
    std::string error;

    /// One parsed object for each line of the output.
    std::vector<nlohmann::json> lines() const;
};

/// The names in the answer of `stores`, in chain order.
std::vector<std::string> storeNames(const nlohmann::json& answer);

using Arguments = std::vector<std::string>;

/// Runs a program with `input` on its standard input and waits for its end. The environment is that of the test,
/// without colours.
Outcome runProcess(const std::string& program, const Arguments& arguments, const std::string& input = {});

/// A profile of its own for the program, with the sample's defaults file, removed at the end.
class Profile {
public:
    Profile();
    ~Profile();
    Profile(const Profile&) = delete;
    Profile& operator=(const Profile&) = delete;

    std::filesystem::path root() const { return base; }
    std::filesystem::path defaultsFile() const { return base / "resources" / "lumora-config-defaults.xml"; }
    /// Writes a file of the profile's folder and gives its path.
    std::string write(const std::string& name, std::string_view content) const;
    /// Writes a document of one group with these elements and gives its path.
    std::string writeDocument(const std::string& name, std::string_view elements) const;
    /// Sets a value in the current user's policy.
    void writePolicy(const std::string& name, const std::string& value) const;

    /// lumora-config --profile ROOT ARGUMENTS.
    Outcome run(const Arguments& arguments, const std::string& input = {}) const;
    /// The shell with these lines.
    Outcome shell(const Arguments& lines, const Arguments& options = {}) const;

private:
    std::filesystem::path base;
};

/// A shell that is still running, with JSON answers. Ended with the object.
class RunningShell {
public:
    /// Returns when the shell has answered its first command.
    explicit RunningShell(const Profile& profile);
    ~RunningShell();
    RunningShell(const RunningShell&) = delete;
    RunningShell& operator=(const RunningShell&) = delete;

    int getProcess() const { return process; }
    void send(const std::string& line) const;
    /// Waits for the next object. Throws std::runtime_error at the end of the output.
    nlohmann::json receive() const;
    /// Waits until there is something to receive.
    void awaitOutput() const;
    void signal(int number) const;
    /// Sends the signal again and again until the process has ended, and reads nothing from it. Its exit code, as in
    /// Outcome; -1 if it has not ended after ten seconds.
    int signalUntilEnd(int number);
    /// Waits for the end of the process; what it still prints is dropped. Its exit code, as in Outcome.
    int waitForEnd();

private:
    void closeInput();

    int process = -1;
    int input = -1;
    int output = -1;
};

} // namespace program_test
