#include "CommandTable.h"
#include "ReportFile.h"
#include "disk/Doctor.h"
#include "output/ChainPage.h"
#include "output/TimeText.h"

#include <kyr/ProcessUtils.h>
#include <kyr/StringUtils.h>
#include <zel/LogLineCatcher.h>

#include <chrono>

namespace lumora_config {

namespace {

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
    const auto lock = session.getHost().isProfileLocked() ? Doctor::Lock::Held : Doctor::Lock::NotHeld;
    findings.health = Doctor(lock, Doctor::Owners::Masked).examine();
    findings.profile = session.getHost().getConfigDirectory();
    findings.host = KyrCoreUtils::ProcessUtils::getHostName();
    findings.madeAt = formatTime(std::chrono::system_clock::now());
    findings.showsSecrets = session.getMask().showsSecrets();
    printOrWriteReport(command, renderChainPage(findings), session.getPrinter());
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
    printOrWriteReport(command, text, session.getPrinter());
}

void log(Session& session, const Command& /*command*/) {
    const zel::logging::LogLineCatcher catcher("ConfigService-ConfigServiceImpl");
    session.getHost().onServices("lumora-config: log", [&] { session.getHost().getService()->logConfig(); });
    session.getPrinter().showText("log", catcher.getText());
}

} // namespace

CommandTable getReportCommands() {
    return {{"report", report}, {"log", log}};
}

} // namespace lumora_config
