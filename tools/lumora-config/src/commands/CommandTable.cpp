#include "CommandTable.h"

#include <kyr/StringUtils.h>

namespace lumora_config {

namespace {

CommandTable getAllCommands() {
    CommandTable all;
    for (auto group : {getReadCommands(), getKeyCommands(), getWriteCommands(), getDumpCommands(), getDiffCommands(),
                       getReportCommands(), getBundleCommands(), getLifecycleCommands(), getStorageCommands()}) {
        all.merge(group);
    }
    return all;
}

} // namespace

void runCommand(Session& session, const Command& command) {
    static const CommandTable table = getAllCommands();
    table.at(command.name)(session, command);
}

std::wstring toWide(const std::string& text) {
    return KyrCoreUtils::toWideString(text);
}

void reportDone(Session& session, const Command& command, const std::string& message) {
    session.getPrinter().showDone(command.name, message);
}

} // namespace lumora_config
