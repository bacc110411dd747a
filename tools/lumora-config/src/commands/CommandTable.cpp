#include "CommandTable.h"

#include <kyr/StringUtils.h>

#include <initializer_list>

namespace lumora_config {

namespace {

CommandTable merge(std::initializer_list<CommandTable> groups) {
    CommandTable all;
    for (auto group : groups) {
        all.merge(group);
    }
    return all;
}

CommandTable getReadingCommands() {
    return merge({getReadCommands(), getKeyCommands(), getDumpCommands(), getDiffCommands(), getReportCommands(),
                  getBundleCommands()});
}

CommandTable getAllCommands() {
    return merge(
        {getReadingCommands(), getWriteCommands(), getLoadCommands(), getLifecycleCommands(), getStorageCommands()});
}

} // namespace

bool changesProfile(const Command& command) {
    static const CommandTable reading = getReadingCommands();
    return !command.dryRun && !reading.contains(command.name);
}

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
