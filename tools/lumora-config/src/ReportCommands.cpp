#include "CommandTable.h"
#include "LogLineCatcher.h"

#include <kyr/FstreamUtils.h>
#include <kyr/StringUtils.h>

#include <fstream>

namespace lumora_config {

namespace {

void writeReport(const std::string& path, const std::string& text) {
    std::fstream stream;
    if (KyrCoreUtils::FstreamUtils::open(stream, path, KyrCoreUtils::StreamMode::Write)) {
        stream << text << std::flush;
    }
    if (!stream) {
        throw Failure(ExitCode::Environment, path + ": cannot be written");
    }
}

void report(Session& session, const Command& command) {
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
