#include "CommandTable.h"
#include "host/LogLineCatcher.h"
#include "output/ChainPage.h"

#include <kyr/FstreamUtils.h>
#include <kyr/StringUtils.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <sstream>

namespace lumora_config {

namespace {

enum class Readers { AsUsual, OwnerAlone };

void writeReport(const std::string& path, const std::string& text, Readers readers = Readers::AsUsual) {
    std::fstream stream;
    if (KyrCoreUtils::FstreamUtils::open(stream, path, KyrCoreUtils::StreamMode::Write)) {
        if (readers == Readers::OwnerAlone) {
            using std::filesystem::perms;
            std::filesystem::permissions(path, perms::owner_read | perms::owner_write);
        }
        stream << text << std::flush;
    }
    if (!stream) {
        throw Failure(ExitCode::Environment, path + ": cannot be written");
    }
}

/// In the form of ISO 8601, which a page can turn into the reader's time.
std::string nameThisMoment() {
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
    findings.madeAt = nameThisMoment();
    findings.showsSecrets = session.getMask().showsSecrets();
    writeReport(command.htmlFile, renderChainPage(findings),
                findings.showsSecrets ? Readers::OwnerAlone : Readers::AsUsual);
    reportDone(session, command, "page written to " + command.htmlFile);
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
    if (command.file.empty()) {
        session.getPrinter().showText("report", text);
        return;
    }
    writeReport(command.file, text);
    reportDone(session, command, "report written to " + command.file);
}

void log(Session& session, const Command& /*command*/) {
    const LogLineCatcher catcher("ConfigService-ConfigServiceImpl");
    session.getHost().onServices("lumora-config: log", [&] { session.getHost().getService()->logConfig(); });
    session.getPrinter().showText("log", catcher.getText());
}

void resetData(Session& session, const Command& command) {
    if (!command.confirmed) {
        throw Failure(ExitCode::Usage, "reset-data removes the user's settings and the cached stores; say --yes");
    }
    session.getHost().resetData();
    reportDone(session, command, "the client's configuration is reset");
}

} // namespace

void addReportCommands(CommandTable& table) {
    table["report"] = report;
    table["log"] = log;
    table["reset-data"] = resetData;
}

} // namespace lumora_config
