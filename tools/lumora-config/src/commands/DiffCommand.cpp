#include "DiffCommand.h"

#include "CommandTable.h"
#include "SettingsReader.h"
#include "output/SettingsComparison.h"
#include "output/SettingsText.h"
#include "stores/KnownKeys.h"
#include "stores/XmlSettings.h"

#include <ConfigCatalogue.h>

#include <algorithm>
#include <filesystem>

namespace lumora_config {

namespace {

namespace ConfigKeys = ZelUnified::ConfigKeys;

/// Returns the part of a report that lists the stores with their keys.
std::string_view findStores(std::string_view report, const std::string& name) {
    constexpr std::string_view end = "</AllMemoryConfigs>";
    const auto from = report.find("<AllMemoryConfigs>");
    const auto to = report.find(end, std::min(from, report.size()));
    if (to == std::string_view::npos) {
        throw Failure(ExitCode::Environment, name + ": neither a dump nor a report");
    }
    return report.substr(from, to + end.size() - from);
}

/// Returns the first setting of each key in a report, which is the one in force: the stores are in chain order, and the
/// new name of a key wins in whichever store it is.
SettingsDump parseReport(std::string_view content, const std::string& name) {
    SettingsDump dump{name, {}};
    ZelUnified::ConfigKeySet found;
    const auto settings = parseXmlSettings(findStores(content, name), name);
    for (const bool byOldName : {false, true}) {
        for (const auto& setting : settings) {
            const auto names = ConfigKeys::getKeyNames(setting.key);
            if (names.isRequestedByOldName == byOldName && found.insert(names.newName).second) {
                dump.settings.push_back(
                    {std::wstring(ConfigKeys::spellKey(setting.key)), setting.value, setting.group, false, false});
            }
        }
    }
    return dump;
}

/// A value that a file contains is a secret if the catalogue says so, whatever the file says.
void markSecrets(SettingsDump& dump) {
    for (auto& setting : dump.settings) {
        const auto facts = findKeyFacts(setting.key);
        setting.sensitive = setting.sensitive || (facts && facts->sensitive);
    }
}

SettingsDump readFile(const std::string& path) {
    const auto content = readWholeFile(path);
    const auto start = content.find_first_not_of(" \t\r\n");
    auto dump =
        start != std::string::npos && content[start] == '<' ? parseReport(content, path) : parseDump(content, path);
    markSecrets(dump);
    return dump;
}

SettingsDump readOperand(const std::string& operand, const ProfileReader& readProfile) {
    std::error_code error;
    if (!std::filesystem::is_directory(operand, error)) {
        return readFile(operand);
    }
    auto dump = readProfile(operand);
    dump.source = operand;
    return dump;
}

void show(SettingsDump& left, SettingsDump& right, const Command& command, bool showSecrets, Printer& printer) {
    auto comparison = compareSettings(left, right, command.withStores ? Compared::ValuesAndStores : Compared::Values);
    if (!showSecrets) {
        hideSecrets(comparison);
    }
    printer.showComparison(comparison);
    if (comparison.unknown != 0) {
        printer.showWarning(std::to_string(comparison.unknown) +
                            " sensitive keys were not compared, because a file does not contain their values");
    }
    if (!comparison.differences.empty()) {
        throw Failure(ExitCode::NotFound,
                      std::to_string(comparison.differences.size()) + " of " +
                          std::to_string(comparison.differences.size() + comparison.equal + comparison.unknown) +
                          " keys differ");
    }
}

void diff(Session& session, const Command& command) {
    const bool showSecrets = session.getMask().showsSecrets();
    if (command.operands.empty()) {
        auto administrators = readAdministratorsValues(session);
        auto inForce = readEffectiveValues(session);
        show(administrators, inForce, command, showSecrets, session.getPrinter());
        return;
    }
    const auto readProfile = [&](const std::string& folder) {
        if (!folder.empty()) {
            throw Failure(ExitCode::Usage, folder + ": the shell uses a profile already; compare profiles outside it");
        }
        return readEffectiveValues(session);
    };
    showDifferences(command, readProfile, showSecrets, session.getPrinter());
}

} // namespace

void showDifferences(const Command& command, const ProfileReader& readProfile, bool showSecrets, Printer& printer) {
    auto left = readOperand(command.operands.front(), readProfile);
    auto right = command.operands.size() == 1 ? readProfile("") : readOperand(command.operands.back(), readProfile);
    show(left, right, command, showSecrets, printer);
}

CommandTable getDiffCommands() {
    return {{"diff", diff}};
}

} // namespace lumora_config
