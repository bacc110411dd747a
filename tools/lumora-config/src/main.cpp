#include "commands/CommandLine.h"
#include "commands/CommandTable.h"
#include "commands/CompletionCommand.h"
#include "commands/KeyCommands.h"
#include "commands/Session.h"
#include "commands/Shell.h"
#include "disk/Doctor.h"
#include "host/ConfigHost.h"
#include "host/HostFolders.h"
#include "output/JsonPrinter.h"
#include "output/LogLinePrinter.h"
#include "output/Output.h"
#include "output/TextPrinter.h"

#include <kyr/EndSignals.h>
#include <kyr/StandardStreams.h>

#include <cerrno>
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

ExitCode runSession(const CommandLine& line, Printer& printer) {
    if (line.command.name == "doctor") {
        examineProfile(line, printer);
        return ExitCode::Done;
    }
    if (line.command.name == "keys") {
        showKnownKeys(line.command, printer);
        return ExitCode::Done;
    }
    if (line.command.name == "completion") {
        printer.showText("completion", std::string(getCompletionScript(line.command.topic)));
        return ExitCode::Done;
    }
    if (!line.trusted) {
        requireTrusted(line.namedDirectories);
    }
    ConfigHost host(line.directories, line.pluginDirectory, line.verbose, line.plugins);
    showHealthNotice(host.getConfigDirectory(), printer);
    Session session(host, printer, line.showSecrets);
    host.start();
    host.loadForeignPlugins();
    for (const auto& spec : line.bootstraps) {
        session.addBootstrapStore(spec);
    }
    const auto storesCode = addForeignStores(session, line, printer);
    const auto code = line.command.name == "shell" ? Shell(session).run() : runOne(session, line.command);
    return code == ExitCode::Done ? storesCode : code;
}

ExitCode runLine(const CommandLine& line, Outputs& outputs) {
    std::optional<LogLinePrinter> logLines;
    if (line.verbose) {
        logLines.emplace(outputs.messages);
    }
    const auto printer = makePrinter(line, outputs);
    try {
        return runSession(line, *printer);
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
    const auto code = checkAnswers(runGuarded(argc, argv, outputs), outputs);
    EndSignals::endProcess();
    return static_cast<int>(code);
}
