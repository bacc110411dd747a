#include "CommandGrammar.h"

#include "UsageMessage.h"
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

void addSetForce(CLI::App* app, Command& command) {
    app->add_flag("--force", command.forced, "Also set what XML cannot represent or the kind of the key excludes");
}

void addList(CLI::App& app, Command& command) {
    auto* list = addCommand(app, command, "list", "List keys, values and stores");
    list->add_option("PATTERN", command.prefix, "Only keys that begin with this text or match its wildcards * and ?");
    list->add_flag("--regexp", command.byExpression, "PATTERN is a regular expression that matches a part of the key");
    list->add_flag("--value", command.byValue, "Search the values instead of the keys, and any part of them");
    list->add_option("--store", command.store, "The keys and values of this store")->type_name("NAME");
    list->add_flag("--overridden", command.overridden, "Only keys whose value is not the administrator's");
    list->add_flag("--sensitive", command.sensitive, "Only sensitive keys");
}

void addDumps(CLI::App& app, Command& command) {
    auto* dump = addCommand(app, command, "dump", "Write keys and values as text or JSON that load reads");
    dump->add_option("PATTERN", command.prefix, "Only keys that begin with this text or match its wildcards * and ?");
    auto* user = dump->add_flag_callback(
        "--user", [] {}, "The user's own settings; the default");
    auto* effective = dump->add_flag("--effective", command.effective, "The values in force")->excludes(user);
    dump->add_option("--store", command.store, "The values of this store")
        ->type_name("NAME")
        ->excludes(user)
        ->excludes(effective);
    dump->add_option("-o,--output", command.file, "Write to this file, - for standard output")->type_name("FILE");
    auto* load = addCommand(app, command, "load", "Set all values of a dump with one write, or none");
    load->add_option("FILE", command.file, "The dump, - for standard input")->required();
    load->add_flag("--dry-run", command.dryRun, "Check and count, but set nothing");
    load->add_flag("--force", command.forced, "Also set what XML cannot represent or the kind of a key excludes");
    auto* diff = addCommand(app, command, "diff", "Compare profiles, dumps, reports or the values in force");
    const auto addOperand = [&command](const std::string& operand) { command.operands.push_back(operand); };
    diff->add_option_function<std::string>("FILE", addOperand,
                                           "A dump or a report, as text or JSON, or the folder of a profile");
    diff->add_option_function<std::string>("FILE2", addOperand, "The other one; without it the profile in use");
    diff->add_flag("--stores", command.withStores, "Also report equal values that come from different stores");
}

void addReads(CLI::App& app, Command& command) {
    auto* get = addKeyCommand(app, command, "get", "Show the value of a key");
    get->add_flag("--origin", command.origin, "Also print the store of the value");
    auto* admin = get->add_flag("--admin", command.admin, "The administrator's value, without the user's own settings");
    get->add_option("--store", command.store, "The value in this store")->type_name("NAME")->excludes(admin);
    get->add_option("--default", command.fallback, "Print this value if there is none")->type_name("VALUE");
    addKeyCommand(app, command, "explain", "Show the value of a key in each store, and which one wins");
    addList(app, command);
    auto* keys = addCommand(app, command, "keys", "List the keys of the catalogue with their meaning");
    keys->add_option("PATTERN", command.prefix, "Only keys that contain this text or match its wildcards * and ?");
    keys->add_flag("--sensitive", command.sensitive, "Only sensitive keys");
    keys->add_flag("--renamed", command.renamed, "Only renamed keys");
    addKeyCommand(app, command, "describe", "Show what is known about a key, its value and its source");
    addCommand(app, command, "stores", "List the stores of the chain");
    auto* report = addCommand(app, command, "report", "Write the report of all stores");
    auto* output =
        report->add_option("-o,--output", command.file, "Write to this file, - for standard output")->type_name("FILE");
    report->add_option("--html", command.htmlFile, "Write a page for a browser to this file")
        ->type_name("FILE")
        ->excludes(output);
    auto* bundle = addCommand(app, command, "bundle", "Write one archive for a problem report, without secrets");
    bundle->add_option("-o,--output", command.file, "Write to this file; the default names profile and time")
        ->type_name("FILE");
    bundle->add_flag("--force", command.forced, "Replace an existing file");
    addCommand(app, command, "log", "Show the settings report of the log");
    addCommand(app, command, "doctor", "Examine the files, directories, policies and the lock of the profile");
}

void addWrites(CLI::App& app, Command& command, CommandScope scope) {
    auto* set = addKeyCommand(app, command, "set", "Set the user's value of a key");
    set->add_option("VALUE", command.value, "The value, - to read it from standard input")->required();
    addSetForce(set, command);
    if (scope == CommandScope::Shell) {
        addWorkerFlag(set, command);
    }
    auto* memory = addKeyCommand(app, command, "memory", "Set a value for this run of the client");
    addValue(memory, command);
    addSetForce(memory, command);
    if (scope == CommandScope::Shell) {
        addWorkerFlag(memory, command);
    }
    addCommand(app, command, "refresh", "Drop and re-read the stores that are not local");
    addKeyCommand(app, command, "reset", "Remove the user's value of a key");
    addCommand(app, command, "provision", "Apply the settings of a provisioning URL")
        ->add_option("URL", command.url, "The URL; the part after its '?' contains the settings")
        ->required();
    addCommand(app, command, "reset-provisioning", "Allow another provisioning URL");
    addCommand(app, command, "mdm", "Apply a document of the device management")
        ->add_option("FILE", command.file, "The XML document")
        ->required();
    auto* import =
        addCommand(app, command, "import-policy", "Check an administrator's policy file and import it for this user");
    import->add_option("FILE.reg", command.file, "The file, as a registry editor exports it")->required();
    import->add_flag("--dry-run", command.dryRun, "Only check it, and print each value that it sets");
    addCommand(app, command, "remove-store", "Remove a store and its cached copy")
        ->add_option("NAME", command.store, "The store's name")
        ->required();
    addCommand(app, command, "restore", "Restore a file that was moved aside")
        ->add_option("FILE", command.file, "Its name, as doctor lists it")
        ->required();
    auto* resetData =
        addCommand(app, command, "reset-data", "Reset the client: remove the user's settings and the cached stores");
    resetData->add_flag("--yes", command.confirmed, "Confirm the reset");
    resetData->add_flag("--force", command.forced, "Also remove files that are not the client's");
}

/// The commands that start a client or follow one; in a shell, the shell itself is the client.
void addLiveCommands(CLI::App& app, Command& command) {
    addCommand(app, command, "serve", "Run a client with the profile until a signal ends it")
        ->add_flag("--no-changes", command.changesRefused, "Refuse changes by other processes");
    auto* watch = addCommand(app, command, "watch", "Print each change of the running client");
    watch->add_option("KEY", command.watched, "Only these keys; * stands for any text, ? for one character");
    watch->add_flag("--follow", command.follows, "Wait for a client, and for the next one when it ends");
}

void addFleet(CLI::App& app, Command& command) {
    auto* fleet = addCommand(app, command, "fleet", "Show or change the settings of many clients in their cluster");
    auto& options = command.fleet;
    fleet->add_option("ACTION", options.action, "What to do")->type_name("get|set|unset|list|watch")->required();
    fleet->add_option("KEY", command.key, "For get, set and unset: the key, in any case");
    fleet->add_option("VALUE", command.fallback, "For set: the value, - to read it from standard input");
    const auto addText = [fleet](const char* name, std::string& value, const char* help, const char* type) {
        fleet->add_option(name, value, help)->type_name(type);
    };
    const auto addTexts = [fleet](const char* name, std::vector<std::string>& values, const char* help,
                                  const char* type) {
        fleet->add_option(name, values, help)->type_name(type)->allow_extra_args(false);
    };
    addTexts("--endpoint", options.endpoints, "A member of the cluster, https://HOST:PORT", "URL");
    addTexts("--group", options.groups,
             "Only this group; list and watch: everybody and this group, of which the first named wins", "NAME");
    addText("--user", options.user, "Only this user; list and watch: everybody and this user", "NAME");
    addText("--authority", options.authority, "The certificate authorities of the members", "FILE");
    addText("--certificate", options.clientCertificate, "A certificate for the members", "FILE");
    addText("--certificate-key", options.clientKey, "Its private key", "FILE");
    addText("--username", options.username, "The user of the cluster", "NAME");
    addText("--password-file", options.passwordFile, "The file with the password of that user", "FILE");
    fleet->add_flag("--plain-http", options.plainHttp, "Also accept http://HOST:PORT, which anybody can read");
}

void addShellCommands(CLI::App& app, Command& command) {
    addCommand(app, command, "start", "Start the feature set");
    addCommand(app, command, "stop", "Stop the feature set");
    addCommand(app, command, "power-down", "Announce that the machine shuts down");
    addKeyCommand(app, command, "observe", "Print each change of a key")
        ->add_option("--with", command.companions, "Also print the value of this key at that moment")
        ->type_name("KEY")
        ->allow_extra_args(false);
    addKeyCommand(app, command, "unobserve", "Stop observing a key");
    addCommand(app, command, "add-store", "Add a foreign store")
        ->add_option("FILE.xml:NAME:PRIORITY[:cache]", command.store, "The store")
        ->required();
    addKeyCommand(app, command, "sensitive", "Hide the value of a key from now on");
    addCommand(app, command, "wait", "Wait until no change is pending");
    addCommand(app, command, "quit", "Leave the shell")->alias("exit");
}

/// Removes --worker if the shell cannot wait for a worker.
void removeWorkers(CLI::App& app, const CommandFilter& canRun) {
    if (canRun("wait")) {
        return;
    }
    for (const auto* const name : {"set", "memory"}) {
        auto* const command = app.get_subcommand(name);
        command->remove_option(command->get_option("--worker"));
    }
}

/// Hides the commands that cannot run. The shell itself carries out "help" and "quit".
void hideOthers(CLI::App& app, const CommandFilter& canRun) {
    removeWorkers(app, canRun);
    for (auto* command : app.get_subcommands([](const CLI::App*) { return true; })) {
        const auto& name = command->get_name();
        if (name != "help" && name != "quit" && !canRun(name)) {
            command->group("");
        }
    }
}

} // namespace

void addCommands(CLI::App& app, Command& command, CommandScope scope) {
    app.require_subcommand(1);
    app.allow_windows_style_options(false); // a word with "/" at its start is a path on every platform
    app.get_formatter()->label("SUBCOMMAND", "COMMAND");
    addReads(app, command);
    addWrites(app, command, scope);
    addDumps(app, command);
    if (scope == CommandScope::Shell) {
        addShellCommands(app, command);
    } else {
        addCommand(app, command, "shell", "Read commands from standard input, one per line");
        addCommand(app, command, "completion", "Print the completion script of a shell")
            ->add_option("SHELL", command.topic, "The shell")
            ->type_name("bash|fish|zsh")
            ->required();
        addLiveCommands(app, command);
        addFleet(app, command);
    }
    addCommand(app, command, "help", "Print the help, or that of a command")
        ->add_option("COMMAND", command.topic, "The command");
}

Command parseShellCommand(std::vector<std::string> words, const CommandFilter& canRun) {
    Command command;
    CLI::App app("Commands of the shell");
    addCommands(app, command, CommandScope::Shell);
    hideOthers(app, canRun);
    std::ranges::reverse(words);
    try {
        app.parse(words);
    } catch (const CLI::CallForHelp&) {
        throw Failure(ExitCode::Done, app.help());
    } catch (const CLI::ParseError& error) {
        throw Failure(ExitCode::Usage, describeUsage(app, error));
    }
    if (command.name == "help") {
        throw Failure(ExitCode::Done, getHelp(app, command.topic));
    }
    return command;
}

void withShellGrammar(const CommandFilter& canRun, const std::function<void(const CLI::App& grammar)>& use) {
    Command command;
    CLI::App app;
    addCommands(app, command, CommandScope::Shell);
    hideOthers(app, canRun);
    use(app);
}

std::vector<const CLI::App*> listShownCommands(const CLI::App& grammar) {
    return grammar.get_subcommands([](const CLI::App* command) { return !command->get_group().empty(); });
}

} // namespace lumora_config
