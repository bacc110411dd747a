#include "DiffCommand.h"

#include "CommandTable.h"
#include "SettingsReader.h"
#include "output/SettingsComparison.h"
#include "output/SettingsJson.h"
#include "output/SettingsText.h"
#include "stores/KnownKeys.h"
#include "stores/ReportSettings.h"
#include "stores/XmlSettings.h"

#include <kyr/Paths.h>

#include <filesystem>

namespace lumora_config {

namespace {

constexpr auto standardInput = "-";

/// A value that a file contains is a secret if the catalogue says so, whatever the file says.
void markSecrets(SettingsDump& dump) {
    for (auto& setting : dump.settings) {
        const auto facts = findKeyFacts(setting.key);
        setting.sensitive = setting.sensitive || (facts && facts->sensitive);
    }
}

SettingsDump parseFile(const std::string& content, const std::string& path) {
    const auto start = content.find_first_not_of(" \t\r\n");
    if (start != std::string::npos && content[start] == '<') {
        return parseReport(content, path);
    }
    const auto report = findReportText(content);
    return report ? parseReport(*report, path) : parseDump(content, path);
}

SettingsDump readFile(const std::string& path, const CommandInput& input) {
    const bool isInput = path == standardInput;
    const auto content = isInput ? input.readAll() : readFileOrPipe(path);
    try {
        auto dump = parseFile(content, isInput ? "standard input" : path);
        markSecrets(dump);
        return dump;
    } catch (const Failure& failure) {
        throw Failure(failure.getCode(), std::string(failure.what()) +
                                             "; diff reads what dump and report write, with or without --json, and "
                                             "folders of profiles");
    }
}

bool isProfile(const std::string& operand) {
    std::error_code error;
    return operand != standardInput && std::filesystem::is_directory(KyrCoreUtils::toPath(operand), error);
}

void show(const SettingsDump& left, const SettingsDump& right, const Command& command, bool showSecrets,
          Printer& printer) {
    auto comparison = compareSettings(left, right, command.withStores ? Compared::ValuesAndStores : Compared::Values);
    if (!showSecrets) {
        hideSecrets(comparison);
    }
    printer.showComparison(comparison);
    if (comparison.unknown != 0) {
        printer.showWarning("sensitive keys that are not compared, because a file does not contain their values: " +
                            std::to_string(comparison.unknown));
    }
    if (!comparison.differences.empty()) {
        throw Failure(ExitCode::NotFound,
                      std::to_string(comparison.differences.size()) + " of " +
                          std::to_string(comparison.differences.size() + comparison.equal + comparison.unknown) +
                          " keys differ");
    }
}

void diff(Session& session, const Command& command) {
    const auto readProfile = [&](const std::string& folder, const std::string& source) {
        if (!folder.empty()) {
            throw Failure(ExitCode::Usage, folder + ": the shell uses a profile already; compare profiles outside it");
        }
        return readSource(session, source);
    };
    showDifferences(command, readProfile, session.getInput(), session.getMask().showsSecrets(), session.getPrinter());
}

} // namespace

void showDifferences(const Command& command, const ProfileReader& readProfile, const CommandInput& input,
                     bool showSecrets, Printer& printer) {
    if (command.operands.empty()) {
        const auto administrators = readProfile("", "administrator");
        show(administrators, readProfile("", "effective"), command, showSecrets, printer);
        return;
    }
    const auto& first = command.operands.front();
    const auto second = command.operands.size() == 1 ? std::string() : command.operands.back();
    if (first == standardInput && second == standardInput) {
        throw Failure(ExitCode::Usage, "only one operand of 'diff' can be '-'");
    }
    const bool isFirstProfile = isProfile(first);
    const bool isSecondProfile = second.empty() || isProfile(second);
    SettingsDump left;
    SettingsDump right;
    if (!isFirstProfile) {
        left = readFile(first, input);
    }
    if (!isSecondProfile) {
        right = readFile(second, input);
    }
    // Of a profile, the values that the file contains are read; of two profiles, the values in force.
    const auto source = !isFirstProfile ? left.source : !isSecondProfile ? right.source : "effective";
    if (isFirstProfile) {
        left = readProfile(first, source);
        left.name = first;
    }
    if (isSecondProfile) {
        right = readProfile(second, source);
        right.name = second;
    }
    show(left, right, command, showSecrets, printer);
}

CommandTable getDiffCommands() {
    return {{"diff", diff}};
}

} // namespace lumora_config
