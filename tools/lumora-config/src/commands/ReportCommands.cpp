#include "CommandTable.h"
#include "disk/ForeignFiles.h"
#include "host/LogLineCatcher.h"
#include "output/ChainPage.h"
#include "output/TimeText.h"

#include <kyr/FileUtils.h>
#include <kyr/StringUtils.h>
#include <zel/RegularFile.h>

#include <cerrno>
#include <chrono>
#include <system_error>

namespace lumora_config {

namespace {

void writeReport(const std::string& path, const std::string& text) {
    const int error = zel::storage::RegularFile::replace(path, text);
    if (error == EEXIST) {
        throw Failure(ExitCode::Environment, path + ": cannot be written: it is not a regular file");
    }
    if (error != 0) {
        throw Failure(ExitCode::Environment, path + ": cannot be written: " + std::generic_category().message(error));
    }
}

/// Prints the text, or writes it to the file and reports that. The paths "" and "-" mean standard output.
void deliver(Session& session, const Command& command, const std::string& path, const std::string& text) {
    if (path.empty() || path == "-") {
        session.getPrinter().showText("report", text);
        return;
    }
    writeReport(path, text);
    reportDone(session, command, (command.htmlFile.empty() ? "report" : "page") + std::string(" written to ") + path);
}

void reportAsPage(Session& session, const Command& command) {
    ChainFindings findings;
    session.getHost().onServices("lumora-config: report", [&] {
        findings.stores = session.getChain().listStores();
        findings.keys = session.getChain().explainAll();
    });
    auto origins = session.makeOriginFinder();
    for (auto& key : findings.keys) {
        session.getMask().hide(key);
        origins.locate(key);
    }
    findings.madeAt = formatTime(std::chrono::system_clock::now());
    findings.showsSecrets = session.getMask().showsSecrets();
    deliver(session, command, command.htmlFile, renderChainPage(findings));
}

void report(Session& session, const Command& command) {
    if (!command.htmlFile.empty()) {
        reportAsPage(session, command);
        return;
    }
    std::string text;
    session.getHost().onServices("lumora-config: report", [&] {
        text = KyrCoreUtils::toString(session.getHost().getService()->getAllConfigForPRT());
    });
    deliver(session, command, command.file, text);
}

void log(Session& session, const Command& /*command*/) {
    const LogLineCatcher catcher("ConfigService-ConfigServiceImpl");
    session.getHost().onServices("lumora-config: log", [&] { session.getHost().getService()->logConfig(); });
    session.getPrinter().showText("log", catcher.getText());
}

/// A reset empties the configuration directory. A wrong directory may contain files of other programs.
void requireNoForeignFiles() {
    const auto directory = KyrCoreUtils::FileUtils::getConfigDirectory();
    const auto foreign = findForeignFiles(directory);
    if (foreign.empty()) {
        return;
    }
    auto message = directory + " contains files that are not the client's; --force removes them, too: ";
    for (const auto& file : foreign) {
        message += (&file == &foreign.front() ? "" : ", ") + file;
    }
    throw Failure(ExitCode::NotFound, message);
}

void resetData(Session& session, const Command& command) {
    if (!command.confirmed) {
        throw Failure(ExitCode::Usage, "reset-data removes the user's settings and the cached stores; say --yes");
    }
    if (!command.forced) {
        requireNoForeignFiles();
    }
    session.getHost().resetData();
    session.forgetAllExpected();
    session.getDisk().requireReset();
    reportDone(session, command, "the client's configuration is reset");
}

} // namespace

void addReportCommands(CommandTable& table) {
    table["report"] = report;
    table["log"] = log;
    table["reset-data"] = resetData;
}

} // namespace lumora_config
