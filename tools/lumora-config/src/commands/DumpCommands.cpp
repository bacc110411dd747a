#include "DumpCommands.h"

#include "CommandTable.h"
#include "SettingsReader.h"
#include "StorableCheck.h"
#include "disk/OutputFile.h"
#include "output/SettingsText.h"
#include "stores/SearchPattern.h"
#include "stores/XmlSettings.h"

#include <kyr/StandardStreams.h>
#include <kyr/StringUtils.h>

#include <ConfigKeys.h>

#include <algorithm>
#include <iterator>

namespace lumora_config {

namespace {

using KyrCoreUtils::StandardStreams;
using KyrCoreUtils::toString;

bool isStandardStream(const std::string& path) {
    return path.empty() || path == "-";
}

/// Secrets are written only to files that nobody else may read.
void requirePrivateOutput(const SettingsDump& dump, const std::string& path) {
    const auto isSecret = [](const DumpedSetting& setting) { return setting.sensitive && !setting.hidden; };
    if (isStandardStream(path) && std::ranges::any_of(dump.settings, isSecret) &&
        !StandardStreams::isPrivateFile(StandardStreams::Stream::Output)) {
        throw Failure(ExitCode::NotFound, "the dump contains secrets, and standard output is not a file of mode 0600; "
                                          "--output FILE creates one");
    }
}

void dump(Session& session, const Command& command) {
    finishDump(command, readSource(session, nameDumpSource(command)), session.getMask().showsSecrets(),
               session.getPrinter());
}

void countChanges(Session& session, const ZelUnified::ConfigMap& values, LoadSummary& summary) {
    session.getHost().onServices("lumora-config: values before load", [&] {
        const auto store = session.getHost().getFeatureSet()->getConfigStoreByName(
            std::string(ZelUnified::ConfigKeys::localFileConfigStore));
        std::wstring held;
        for (const auto& [key, value] : values) {
            const bool isHeld = store && store->getValue(key, held);
            ++(!isHeld ? summary.added : held == value ? summary.unchanged : summary.changed);
        }
    });
}

void storeAll(Session& session, const ZelUnified::ConfigMap& values) {
    bool stored = false;
    session.getHost().onServices("lumora-config: load",
                                 [&] { stored = session.getHost().getFeatureSet()->setConfig(values); });
    if (!stored) {
        throw Failure(ExitCode::NotFound, "no store accepts values");
    }
    std::vector<std::wstring> keys;
    std::ranges::transform(values, std::back_inserter(keys), [](const auto& entry) { return entry.first; });
    session.forgetExpected(keys);
    session.getDiskCheck().requireAllStored(values);
}

void load(Session& session, const Command& command) {
    const auto content = readDump(session.getInput(), command.file);
    LoadSummary summary;
    summary.file = content.name;
    summary.dryRun = command.dryRun;
    const auto values = collectValues(content, command.forced, summary);
    countChanges(session, values, summary);
    if (!command.dryRun && !values.empty()) {
        storeAll(session, values);
    }
    session.getPrinter().showLoad(summary);
}

} // namespace

std::string nameDumpSource(const Command& command) {
    return command.effective ? "effective" : command.store.empty() ? "user" : command.store;
}

void finishDump(const Command& command, SettingsDump content, bool showSecrets, Printer& printer) {
    if (!command.prefix.empty()) {
        const SearchPattern pattern(toWide(command.prefix), SearchPattern::Kind::Prefix);
        std::erase_if(content.settings, [&](const DumpedSetting& setting) { return !pattern.matches(setting.key); });
    }
    if (!showSecrets) {
        hideSecrets(content);
    }
    requirePrivateOutput(content, command.file);
    if (isStandardStream(command.file)) {
        printer.showDump(content);
        return;
    }
    writeOutputFile(command.file, printer.formatDump(content));
    printer.showDone(command.name, std::to_string(content.settings.size()) + " keys written to " + command.file);
}

SettingsDump readDump(const CommandInput& input, const std::string& path) {
    return path == "-" ? parseDump(input.readAll(), "standard input") : parseDump(readFileOrPipe(path), path);
}

ZelUnified::ConfigMap collectValues(const SettingsDump& dump, bool forced, LoadSummary& summary) {
    ZelUnified::ConfigMap values;
    for (const auto& setting : dump.settings) {
        if (setting.hidden || belongsToProfile(setting.key)) {
            ++summary.leftOut;
            continue;
        }
        const auto key = toString(setting.key);
        requireStorable(key, toString(setting.value), forced);
        if (!values.emplace(setting.key, setting.value).second) {
            throw Failure(ExitCode::NotFound, dump.name + " contains the key '" + key + "' twice");
        }
    }
    return values;
}

CommandTable getDumpCommands() {
    return {{"dump", dump}};
}

CommandTable getLoadCommands() {
    return {{"load", load}};
}

} // namespace lumora_config
