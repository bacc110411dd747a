#include "Commands.h"

#include "CommandTable.h"

#include <kyr/StringUtils.h>

namespace lumora_config {

namespace {

CommandTable makeTable() {
    CommandTable table;
    addReadCommands(table);
    addKeyCommands(table);
    addWriteCommands(table);
    addReportCommands(table);
    addLifecycleCommands(table);
    addStorageCommands(table);
    return table;
}

} // namespace

void runCommand(Session& session, const Command& command) {
    static const CommandTable table = makeTable();
    table.at(command.name)(session, command);
}

std::wstring wide(const std::string& text) {
    return KyrCoreUtils::toWideString(text);
}

void reportDone(Session& session, const Command& command, const std::string& message) {
    session.getPrinter().showDone(command.name, message);
}

} // namespace lumora_config
