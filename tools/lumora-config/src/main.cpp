#include "commands/CommandLine.h"
#include "commands/Commands.h"
#include "commands/Session.h"
#include "commands/Shell.h"
#include "host/ConfigHost.h"
#include "output/JsonPrinter.h"
#include "output/Terminal.h"
#include "output/TextPrinter.h"
#include "stores/BootstrapStores.h"

#include <iostream>
#include <memory>

namespace {

using namespace lumora_config;

std::unique_ptr<Printer> makePrinter(const CommandLine& line) {
    if (!line.json) {
        return std::make_unique<TextPrinter>(std::cout, std::cerr, Terminal::wantsColour());
    }
    const bool inShell = line.command.name == "shell";
    return std::make_unique<JsonPrinter>(std::cout, std::cerr,
                                         inShell ? JsonPrinter::Failures::AsObjects : JsonPrinter::Failures::AsText);
}

ExitCode runSession(const CommandLine& line, Printer& printer) {
    ConfigHost host(line.directories, line.pluginDirectory, line.verbose);
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

ExitCode run(int argc, char** argv) {
    CommandLine line;
    try {
        line = CommandLine::parse(argc, argv);
    } catch (const Failure& failure) {
        const bool asked = failure.getCode() == ExitCode::Done;
        (asked ? std::cout : std::cerr) << (asked ? "" : "lumora-config: ") << failure.what() << '\n';
        return failure.getCode();
    }
    const auto printer = makePrinter(line);
    try {
        return runSession(line, *printer);
    } catch (const Failure& failure) {
        printer->showFailure(line.command.name, failure);
        return failure.getCode();
    }
}

} // namespace

int main(int argc, char** argv) {
    try {
        return static_cast<int>(run(argc, argv));
    } catch (const std::exception& error) {
        std::cerr << "lumora-config: " << error.what() << '\n';
        return static_cast<int>(lumora_config::ExitCode::Environment);
    }
}
