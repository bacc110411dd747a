#include "commands/CommandLine.h"
#include "commands/CommandTable.h"
#include "commands/CompletionCommand.h"
#include "commands/DiffCommand.h"
#include "commands/KeyCommands.h"
#include "commands/Session.h"
#include "commands/SettingsReader.h"
#include "disk/Doctor.h"
#include "fleet/FleetCommands.h"
#include "host/ConfigHost.h"
#include "host/HostFolders.h"
#include "live/ChangeWatch.h"
#include "live/LiveCommands.h"
#include "live/LiveSettings.h"
#include "live/LiveTarget.h"
#include "output/JsonPrinter.h"
#include "output/LogLinePrinter.h"
#include "output/Output.h"
#include "output/TextPrinter.h"
#include "shell/SessionTarget.h"
#include "shell/Shell.h"

#include <kyr/EndSignals.h>
#include <kyr/ProcessArguments.h>
#include <kyr/StandardStreams.h>
#include <unified/ProfileLock.h>

#include <algorithm>
#include <cerrno>
#include <functional>
#include <memory>
#include <optional>
#include <system_error>

namespace {

using namespace lumora_config;
using KyrCoreUtils::EndSignals;

using KyrCoreUtils::StandardStreams;

Output openStream(StandardStreams::Stream stream, const OutputForm& form) {
    return {form, [stream](std::string_view bytes) { return StandardStreams::write(stream, bytes); }};
}

/// The outputs of the program. They outlive everything that prints or logs.
struct Outputs {
    Output answers = openStream(StandardStreams::Stream::Output, describeStandardOutput());
    Output messages = openStream(StandardStreams::Stream::Error, describeStandardError());
};

std::unique_ptr<Printer> makePrinter(const CommandLine& line, Outputs& outputs) {
    if (!line.json) {
        return std::make_unique<TextPrinter>(outputs.answers, outputs.messages);
    }
    const bool inShell = line.command.name == "shell";
    return std::make_unique<JsonPrinter>(outputs.answers, outputs.messages,
                                         inShell ? JsonPrinter::Failures::AsObjects : JsonPrinter::Failures::AsText);
}

/// Adds the stores of the command line. A store whose copy is not on the disk still serves this run.
ExitCode addForeignStores(Session& session, const CommandLine& line, Printer& printer) {
    auto code = ExitCode::Done;
    for (const auto& spec : line.stores) {
        const auto store = session.addForeignStore(spec);
        try {
            if (spec.cached) {
                session.getDiskCheck().requireCopy(*store);
            }
        } catch (const Failure& failure) {
            printer.showFailure("--store", failure);
            code = failure.getCode();
        }
    }
    return code;
}

ExitCode runOne(Session& session, const Command& command) {
    runCommand(session, command);
    return ExitCode::Done;
}

/// Runs without a plug-in, before a host moves a damaged file aside.
void examineProfile(const CommandLine& line, Printer& printer) {
    KyrCoreUtils::FileUtils::overrideDirectories(line.directories);
    showHealth(Doctor(Doctor::Lock::NotHeld).examine(), printer);
}

/// A store with a copy changes the profile whatever the command does.
ProfileUse getProfileUse(const CommandLine& line) {
    const bool changes = changesProfile(line.command) || std::ranges::any_of(line.stores, &StoreSpec::cached);
    return changes ? ProfileUse::Change : ProfileUse::Read;
}

/// A bundle and a report show what the stores contain. They are needed most when a file is damaged.
DefaultsUse getDefaultsUse(const CommandLine& line, ProfileUse use) {
    const bool reports = line.command.name == "bundle" || line.command.name == "report";
    return reports && use == ProfileUse::Read ? DefaultsUse::Optional : DefaultsUse::Required;
}

/// The files of a profile do not contain all values of a running client. A command that changes the profile finds its
/// lock held instead.
void refuseBesideClient(const CommandLine& line) {
    if (line.offline) {
        return;
    }
    KyrCoreUtils::FileUtils::overrideDirectories(line.directories);
    if (const InspectionClient client; client.isConnected()) {
        throw Failure(ExitCode::Environment, "The profile " + KyrCoreUtils::FileUtils::getConfigDirectory() +
                                                 " is in use by process " + std::to_string(client.getProcess()) +
                                                 "; --offline reads its files");
    }
}

/// A client with another runtime directory cannot be asked, and a host may answer no other process at all. Reading
/// beside them works, but their files need not contain what is in force.
void warnBesideOthers(const CommandLine& line, Printer& printer) {
    if (line.offline) {
        return;
    }
    using KyrCoreUtils::FileUtils;
    const auto problem =
        ZelUnified::ProfileLock::findProblem(FileUtils::getConfigDirectory(), FileUtils::getStateDirectory());
    if (problem.isInUse) {
        printer.showWarning(problem.text + " It cannot be asked, so its files are read.");
    }
}

/// Opens the profile of the command line and adds its stores. Returns the code of `use`, or that of a store that could
/// not be added.
ExitCode withSession(const CommandLine& line, Printer& printer, const std::function<ExitCode(Session&)>& use) {
    if (!line.trusted) {
        requireTrusted(line.pathsToTrust);
    }
    const auto profileUse = getProfileUse(line);
    if (profileUse == ProfileUse::Read) {
        refuseBesideClient(line);
        warnBesideOthers(line, printer);
    }
    ConfigHost host(line.directories, line.pluginDirectory, line.verbose, profileUse, getDefaultsUse(line, profileUse),
                    line.plugins);
    showHealthNotice(host.getConfigDirectory(), printer);
    if (const auto& problem = host.getDefaultsProblem(); !problem.empty()) {
        printer.showWarning(problem + "; the values of this file are missing");
    }
    Session session(host, printer, line.showSecrets);
    host.start();
    host.loadForeignPlugins();
    for (const auto& spec : line.bootstraps) {
        session.addBootstrapStore(spec);
    }
    const auto storesCode = addForeignStores(session, line, printer);
    const auto code = use(session);
    return code == ExitCode::Done ? storesCode : code;
}

/// Returns true if a running client may answer for the profile. Stores and plug-ins of the command line belong to a
/// host of their own.
bool mayAskClient(const CommandLine& line) {
    return !line.offline && line.stores.empty() && line.bootstraps.empty() && line.plugins.empty();
}

/// Asks the client that uses the profile, if there is one. Returns nothing if there is none.
std::optional<SettingsDump> readLive(const CommandLine& line, Printer& printer, const std::string& source) {
    KyrCoreUtils::FileUtils::overrideDirectories(line.directories);
    InspectionClient client;
    if (!client.isConnected()) {
        return std::nullopt;
    }
    CommandInput input;
    LiveCommands(client, input, printer, line.showSecrets).announce();
    return LiveSettings(client).read(source, true);
}

SettingsDump readProfile(const CommandLine& line, Printer& printer, const std::string& folder,
                         const std::string& source) {
    auto opened = line;
    if (!folder.empty()) {
        opened.directories = directoriesOfProfile(folder);
        opened.pathsToTrust = collectFoldersToTrust(folder, opened.directories);
        if (!line.pluginDirectory.empty()) {
            opened.pathsToTrust.push_back(line.pluginDirectory);
        }
    }
    if (mayAskClient(opened)) {
        if (auto live = readLive(opened, printer, source)) {
            return std::move(*live);
        }
    }
    if (line.live) {
        throw Failure(ExitCode::Environment, "no running client can carry out '" + line.command.name + "'");
    }
    SettingsDump dump;
    const auto code = withSession(opened, printer, [&](Session& session) {
        dump = readSource(session, source);
        return ExitCode::Done;
    });
    if (code != ExitCode::Done) {
        throw Failure(code, "the profile cannot be compared");
    }
    return dump;
}

/// Opens the profiles one after the other, because a process has one set of directories.
void compareOperands(const CommandLine& line, Printer& printer) {
    if (!line.trusted) {
        requireTrusted(line.pathsToTrust);
    }
    const auto read = [&](const std::string& folder, const std::string& source) {
        return readProfile(line, printer, folder, source);
    };
    showDifferences(line.command, read, CommandInput(), line.showSecrets, printer);
}

/// Answers other processes until a signal arrives, which is the regular end.
ExitCode serve(Session& session, const Command& command, Printer& printer) {
    session.getHost().startFleet();
    const auto socket = session.getHost().startInspection(!command.changesRefused);
    printer.showText("ready", "serving " + session.getHost().getConfigDirectory() + " on " + socket);
    EndSignals::wait();
    EndSignals::acknowledge();
    return ExitCode::Done;
}

ExitCode watch(const CommandLine& line, Outputs& outputs) {
    if (line.offline) {
        throw Failure(ExitCode::Usage, "--offline excludes 'watch', which needs a running client");
    }
    KyrCoreUtils::FileUtils::overrideDirectories(line.directories);
    ChangeWatch watch(outputs.answers, outputs.messages, line.json ? ChangeWatch::Form::Json : ChangeWatch::Form::Text,
                      line.command.watched, line.showSecrets);
    if (line.command.follows) {
        watch.runForEver();
    } else {
        watch.run();
    }
    return ExitCode::Done;
}

/// Runs the command on the client that uses the profile. Returns nothing if there is none, or none that can be asked.
std::optional<ExitCode> runLive(const CommandLine& line, Printer& printer) {
    const bool isShell = line.command.name == "shell";
    if (!mayAskClient(line) || (!isShell && !LiveCommands::canRun(line.command.name))) {
        return std::nullopt;
    }
    KyrCoreUtils::FileUtils::overrideDirectories(line.directories);
    InspectionClient client;
    if (!client.isConnected()) {
        return std::nullopt;
    }
    if (!line.trusted && !line.pluginDirectory.empty()) {
        requireTrusted({line.pluginDirectory}); // the shell and `bundle` load modules
    }
    if (isShell) {
        LiveTarget target(printer, line.showSecrets);
        return Shell(target, line.pluginDirectory).run();
    }
    CommandInput input;
    LiveCommands commands(client, input, printer, line.showSecrets);
    commands.announce();
    commands.run(line.command);
    return ExitCode::Done;
}

ExitCode runInSession(Session& session, const CommandLine& line, Printer& printer) {
    if (line.command.name == "shell") {
        SessionTarget target(session);
        return Shell(target, line.pluginDirectory).run();
    }
    return line.command.name == "serve" ? serve(session, line.command, printer) : runOne(session, line.command);
}

ExitCode runSession(const CommandLine& line, Printer& printer, Outputs& outputs) {
    if (line.command.name == "completion") {
        printer.showText("completion", std::string(getCompletionScript(line.command.topic)));
        return ExitCode::Done;
    }
    if (line.command.name == "fleet") {
        if (!line.trusted) {
            requireTrusted(line.pathsToTrust);
        }
        runFleetCommand(line, printer);
        return ExitCode::Done;
    }
    if (line.command.name == "watch") {
        return watch(line, outputs);
    }
    if (line.command.name == "diff" && !line.command.operands.empty()) {
        compareOperands(line, printer);
        return ExitCode::Done;
    }
    if (const auto code = runLive(line, printer)) {
        return *code;
    }
    if (line.live) {
        throw Failure(ExitCode::Environment, "no running client can carry out '" + line.command.name + "'");
    }
    if (line.command.name == "refresh" || line.command.name == "memory") {
        throw Failure(ExitCode::Environment, "'" + line.command.name +
                                                 "' is for a running client or the shell, and no "
                                                 "client uses the profile");
    }
    if (line.command.name == "doctor") {
        examineProfile(line, printer);
        return ExitCode::Done;
    }
    if (line.command.name == "keys") {
        showKnownKeys(line.command, printer);
        return ExitCode::Done;
    }
    return withSession(line, printer, [&](Session& session) { return runInSession(session, line, printer); });
}

ExitCode runLine(const CommandLine& line, Outputs& outputs) {
    std::optional<LogLinePrinter> logLines;
    if (line.verbose) {
        logLines.emplace(outputs.messages);
    }
    const auto printer = makePrinter(line, outputs);
    try {
        return runSession(line, *printer, outputs);
    } catch (const Failure& failure) {
        printer->showFailure(line.command.name, failure);
        return failure.getCode();
    }
}

ExitCode run(int argc, char** argv, Outputs& outputs) {
    CommandLine line;
    try {
        line = CommandLine::parse(argc, argv);
    } catch (const Failure& failure) {
        if (failure.getCode() == ExitCode::Done) {
            outputs.answers.writeText(std::string(failure.what()) + '\n');
        } else {
            outputs.messages.writeMessage(std::string("lumora-config: ") + failure.what());
        }
        return failure.getCode();
    }
    return runLine(line, outputs);
}

/// Returns the words to complete if a completion script has called the program. They may be no command line at all, so
/// they are not parsed.
std::optional<std::vector<std::string>> wordsToComplete(int argc, char** argv) {
    if (argc < 3 || std::string_view(argv[1]) != "complete" || std::string_view(argv[2]) != "--") {
        return std::nullopt;
    }
    return std::vector<std::string>(argv + 3, argv + argc);
}

ExitCode runGuarded(int argc, char** argv, Outputs& outputs) {
    try {
        if (const auto words = wordsToComplete(argc, argv)) {
            outputs.answers.writeText(completeCommandLine(*words));
            return ExitCode::Done;
        }
        return run(argc, argv, outputs);
    } catch (const std::exception& error) {
        outputs.messages.writeMessage(std::string("lumora-config: ") + error.what());
        return ExitCode::Environment;
    }
}

/// Returns Environment if an answer could not be written, otherwise `code`. A closed pipe is not an error.
ExitCode checkAnswers(ExitCode code, Outputs& outputs) {
    int error = outputs.answers.getError();
    if (error == 0) {
        error = StandardStreams::flush(StandardStreams::Stream::Output);
    }
    if (error == 0 || error == EPIPE) {
        return code;
    }
    outputs.messages.writeMessage("lumora-config: standard output cannot be written: " +
                                  std::generic_category().message(error));
    return ExitCode::Environment;
}

} // namespace

int main(int argc, char** argv) {
    StandardStreams::prepare();
    // A signal does not interrupt a command or the end of the host, so acknowledged changes are on the disk.
    const EndSignals signals;
    Outputs outputs;
    KyrCoreUtils::ProcessArguments arguments(argc, argv);
    const auto code = checkAnswers(runGuarded(arguments.getCount(), arguments.getValues(), outputs), outputs);
    EndSignals::endProcess();
    return static_cast<int>(code);
}
