#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace lumora_config {

/// The options of the command "fleet".
struct FleetOptions {
    std::string action;
    std::vector<std::string> endpoints;
    std::vector<std::string> groups;
    std::string user;
    std::string authority;
    std::string clientCertificate;
    std::string clientKey;
    std::string username;
    std::string passwordFile;
    bool plainHttp = false;
};

/// One command with its arguments in UTF-8, as the user typed them. A command reads only the members that its grammar
/// sets.
struct Command {
    std::string name;
    std::string key;
    std::string value;
    std::string prefix; ///< For keys, list and dump: the pattern.
    std::string store;  ///< The name of a store. For add-store: the description of the store.
    std::string file;
    std::string htmlFile;
    std::string url;
    std::vector<std::string> operands;   ///< For diff: files and profiles.
    std::optional<std::string> fallback; ///< For get: the value of --default. For fleet: the value, if there is one.
    std::string topic;                   ///< For help: a command. For completion: a shell.
    std::vector<std::string> companions; ///< Keys whose values are shown with each change of the observed key.
    std::vector<std::string> watched;    ///< Keys and patterns.
    std::string pluginDirectory;         ///< The folder of --plugin-dir, which may contain modules too; or empty.
    FleetOptions fleet;
    bool origin = false;
    bool admin = false;
    bool confirmed = false;
    bool forced = false;
    bool follows = false; ///< Waits for the next client.
    bool changesRefused = false;
    bool dryRun = false;
    bool sensitive = false;
    bool renamed = false;
    bool effective = false;
    bool byExpression = false;
    bool byValue = false;
    bool overridden = false;
    bool withStores = false; ///< For diff: a different store of an equal value is a difference.
    bool fromWorker = false; ///< Runs the call on a thread other than the services dispatcher's.
};

/// The set of accepted commands: those of the command line only, or those of the shell too.
enum class CommandScope { CommandLine, Shell };

/// Adds every command of the scope to `app`. Parsing then writes to `command`, which must outlive the parse.
void addCommands(CLI::App& app, Command& command, CommandScope scope);

/// Returns true if a command of this name can run. The others are parsed, but neither listed nor suggested.
using CommandFilter = std::function<bool(const std::string& name)>;

/// Parses one line of the shell, already split into words. Throws Failure: Usage with a message; Done with the help
/// text for "help".
Command parseShellCommand(std::vector<std::string> words, const CommandFilter& canRun);

/// Calls `use` with the grammar of the shell, which exists during the call only.
void withShellGrammar(const CommandFilter& canRun, const std::function<void(const CLI::App& grammar)>& use);

/// Returns the commands of the grammar without the hidden ones.
std::vector<const CLI::App*> listShownCommands(const CLI::App& grammar);

} // namespace lumora_config
