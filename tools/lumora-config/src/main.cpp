#include "BootstrapStores.h"
#include "CommandLine.h"
#include "Commands.h"
#include "ConfigHost.h"
#include "JsonPrinter.h"
#include "LogLinePrinter.h"
#include "Output.h"
#include "Session.h"
#include "Shell.h"
#include "Terminal.h"
#include "TextPrinter.h"

#include <kyr/StandardStreams.h>

#include <cerrno>
#include <iostream>
#include <memory>
#include <optional>
#include <system_error>

namespace {

using namespace lumora_config;

using KyrCoreUtils::StandardStreams;

Output openStream(StandardStreams::Stream stream, const OutputForm& form) {
    return {form, [stream](std::string_view bytes) { return StandardStreams::write(stream, bytes); }};
}

/// Where the program writes. Outlives everything that prints or logs.
struct Outputs {
    Output answers = openStream(StandardStreams::Stream::Output, Terminal::describeOutput());
    Output messages = openStream(StandardStreams::Stream::Error, Terminal::describeError());
};

std::unique_ptr<Printer> makePrinter(const CommandLine& line, Outputs& outputs) {
    if (!line.json) {
        return std::make_unique<TextPrinter>(outputs.answers, outputs.messages);
    }
    const bool inShell = line.command.name == "shell";
    return std::make_unique<JsonPrinter>(outputs.answers, outputs.messages,
                                         inShell ? JsonPrinter::Failures::AsObjects : JsonPrinter::Failures::AsText);
}

ExitCode runSession(const CommandLine& line, Printer& printer) {
    ConfigHost host(line);
    Session session(host, printer, line.showSecrets);
    host.start();
    BootstrapStores bootstraps(host.getPluginDirectory());
    for (const auto& spec : line.bootstraps) {
        session.addStore(bootstraps.make(spec));
    }
    for (const auto& spec : line.stores) {
        session.addForeignStore(spec);
    }
    if (line.command.name == "shell") {
        return Shell(session, std::cin, Terminal::isInteractive()).run();
    }
    runCommand(session, line.command);
    return ExitCode::Done;
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

ExitCode runGuarded(int argc, char** argv, Outputs& outputs) {
    try {
        return run(argc, argv, outputs);
    } catch (const std::exception& error) {
        outputs.messages.writeMessage(std::string("lumora-config: ") + error.what());
        return ExitCode::Environment;
    }
}

/// An answer that nobody could read was not given. A reader that closed its pipe had seen enough.
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
    Outputs outputs;
    return static_cast<int>(checkAnswers(runGuarded(argc, argv, outputs), outputs));
}
