#include "CommandGrammar.h"

#include "output/Failure.h"

#include <CLI/CLI.hpp>
#include <algorithm>

namespace lumora_config {

namespace {

CLI::App* addCommand(CLI::App& app, Command& command, const std::string& name, const std::string& help) {
    auto* added = app.add_subcommand(name, help);
    added->callback([&command, name] { command.name = name; });
    return added;
}

CLI::App* addKeyCommand(CLI::App& app, Command& command, const std::string& name, const std::string& help) {
    auto* added = addCommand(app, command, name, help);
    added->add_option("KEY", command.key, "The key, in any case, under its new or its old name")->required();
    return added;
}

void addValue(CLI::App* app, Command& command) {
    app->add_option("VALUE", command.value, "The value")->required();
}

void addWorkerFlag(CLI::App* app, Command& command) {
    app->add_flag("--worker", command.fromWorker, "Call from a worker thread instead of the services dispatcher's");
}

void addReads(CLI::App& app, Command& command) {
    auto* get = addKeyCommand(app, command, "get", "Show the value of a key");
    get->add_flag("--origin", command.origin, "With the store that it came from");
    auto* admin = get->add_flag("--admin", command.admin, "The administrator's value, without the user's own settings");
    get->add_option("--store", command.store, "What this store says")->type_name("NAME")->excludes(admin);
    addKeyCommand(app, command, "explain", "Show every store's opinion of a key, and which one wins");
    addCommand(app, command, "list", "List keys, values and stores")
        ->add_option("PREFIX", command.prefix, "Only keys that begin so");
    addCommand(app, command, "stores", "List the stores of the chain");
    auto* report = addCommand(app, command, "report", "Write the report of all stores");
    auto* output =
        report->add_option("-o,--output", command.file, "Into this file, - for standard output")->type_name("FILE");
    report->add_option("--html", command.htmlFile, "A page for a browser instead, into this file")
        ->type_name("FILE")
        ->excludes(output);
    addCommand(app, command, "log", "Show the settings report of the log");
    addCommand(app, command, "doctor", "Examine the files, directories, policies and the lock of the profile");
}

void addWrites(CLI::App& app, Command& command, CommandScope scope) {
    auto* set = addKeyCommand(app, command, "set", "Set the user's value of a key");
    addValue(set, command);
    set->add_flag("--force", command.forced, "Set it though XML has no such name or no such character");
    if (scope == CommandScope::Shell) {
        addWorkerFlag(set, command);
    }
    addKeyCommand(app, command, "reset", "Take the user's value of a key back");
    addCommand(app, command, "provision", "Take the settings of a provisioning URL")
        ->add_option("URL", command.url, "The URL; what stands behind its '?' counts")
        ->required();
    addCommand(app, command, "reset-provisioning", "Allow another provisioning URL");
    addCommand(app, command, "mdm", "Push a document of the device management")
        ->add_option("FILE", command.file, "The XML document")
        ->required();
    addCommand(app, command, "import-policy", "Check an administrator's policy file and take it for this user")
        ->add_option("FILE.reg", command.file, "The file, as a registry editor exports it")
        ->required();
    addCommand(app, command, "remove-store", "Remove a store and its cached copy")
        ->add_option("NAME", command.store, "The store's name")
        ->required();
    addCommand(app, command, "restore", "Put back a file that was moved aside")
        ->add_option("FILE", command.file, "Its name, as doctor lists it")
        ->required();
    auto* resetData =
        addCommand(app, command, "reset-data", "Reset the client: the user's settings and the cached stores go");
    resetData->add_flag("--yes", command.confirmed, "Really do it");
    resetData->add_flag("--force", command.forced, "Remove files that are not the client's, too");
}

/// The commands that start a client or follow one; in a shell, the shell itself is the client.
void addLiveCommands(CLI::App& app, Command& command) {
    addCommand(app, command, "serve", "Run a client with the profile until a signal ends it")
        ->add_flag("--no-changes", command.changesRefused, "Refuse changes by other processes");
    auto* watch = addCommand(app, command, "watch", "Print each change of the running client");
    watch->add_option("KEY", command.watched, "Only these keys; * stands for any text, ? for one character");
    watch->add_flag("--follow", command.follows, "Wait for a client, and for the next one when it ends");
}

void addShellCommands(CLI::App& app, Command& command) {
    addCommand(app, command, "start", "Start the feature set");
    addCommand(app, command, "stop", "Stop the feature set");
    addCommand(app, command, "refresh", "Drop and re-read the stores that are not local");
    addCommand(app, command, "power-down", "Let the machine announce that it goes down");
    addKeyCommand(app, command, "observe", "Print each change of a key")
        ->add_option("--with", command.companions, "Print what this key's record says at that moment, too")
        ->type_name("KEY")
        ->allow_extra_args(false);
    addKeyCommand(app, command, "unobserve", "Follow a key no longer");
    addCommand(app, command, "add-store", "Hand in a foreign store")
        ->add_option("FILE.xml:NAME:PRIORITY[:cache]", command.store, "The store")
        ->required();
    auto* memory = addKeyCommand(app, command, "memory", "Set a value for the length of this run");
    addValue(memory, command);
    addWorkerFlag(memory, command);
    addKeyCommand(app, command, "sensitive", "Hide the value of a key from here on");
    addCommand(app, command, "wait", "Wait until all that is under way has happened");
    addCommand(app, command, "quit", "Leave the shell")->alias("exit");
}

} // namespace

void addCommands(CLI::App& app, Command& command, CommandScope scope) {
    app.require_subcommand(1);
    addReads(app, command);
    addWrites(app, command, scope);
    if (scope == CommandScope::Shell) {
        addShellCommands(app, command);
    } else {
        addCommand(app, command, "shell", "Read commands from standard input, one a line");
        addLiveCommands(app, command);
    }
}

Command parseShellCommand(std::vector<std::string> words) {
    Command command;
    CLI::App app("Commands of the shell");
    addCommands(app, command, CommandScope::Shell);
    if (words == std::vector<std::string>{"help"}) {
        throw Failure(ExitCode::Done, app.help());
    }
    std::ranges::reverse(words);
    try {
        app.parse(words);
    } catch (const CLI::CallForHelp&) {
        throw Failure(ExitCode::Done, app.help());
    } catch (const CLI::ParseError& error) {
        throw Failure(ExitCode::Usage, error.what());
    }
    return command;
}

} // namespace lumora_config
