#include "CommandTable.h"
#include "host/LogLineCatcher.h"
#include "output/ChainPage.h"

#include <kyr/StringUtils.h>
#include <zel/RegularFile.h>

#include <cerrno>
#include <chrono>
#include <iomanip>
#include <sstream>
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
void printOrWrite(Session& session, const Command& command, const std::string& path, const std::string& text) {
    if (path.empty() || path == "-") {
        session.getPrinter().showText("report", text);
        return;
    }
    writeReport(path, text);
    reportDone(session, command, (command.htmlFile.empty() ? "report" : "page") + std::string(" written to ") + path);
}

/// Returns the current time in ISO 8601, which the page converts to the reader's time zone.
std::string getCurrentTime() {
    using namespace std::chrono;
    const auto now = floor<seconds>(system_clock::now());
    const auto today = floor<days>(now);
    const year_month_day date(today);
    const hh_mm_ss time(now - today);
    std::ostringstream text;
    text << std::setfill('0') << static_cast<int>(date.year()) << '-' << std::setw(2)
         << static_cast<unsigned>(date.month()) << '-' << std::setw(2) << static_cast<unsigned>(date.day()) << 'T'
         << std::setw(2) << time.hours().count() << ':' << std::setw(2) << time.minutes().count() << ':' << std::setw(2)
         << time.seconds().count() << 'Z';
    return text.str();
}

void reportAsPage(Session& session, const Command& command) {
    ChainFindings findings;
    session.getHost().onServices("lumora-config: report", [&] {
        findings.stores = session.getChain().listStores();
        findings.keys = session.getChain().explainAll();
    });
    for (auto& key : findings.keys) {
        session.getMask().hide(key);
    }
    findings.madeAt = getCurrentTime();
    findings.showsSecrets = session.getMask().showsSecrets();
    printOrWrite(session, command, command.htmlFile, renderChainPage(findings));
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
    printOrWrite(session, command, command.file, text);
}

void log(Session& session, const Command& /*command*/) {
    const LogLineCatcher catcher("ConfigService-ConfigServiceImpl");
    session.getHost().onServices("lumora-config: log", [&] { session.getHost().getService()->logConfig(); });
    session.getPrinter().showText("log", catcher.getText());
}

} // namespace

CommandTable getReportCommands() {
    return {{"report", report}, {"log", log}};
}

} // namespace lumora_config
