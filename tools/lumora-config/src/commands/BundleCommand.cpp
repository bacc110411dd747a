#include "BundleCommand.h"

#include "CommandTable.h"
#include "bundle/Bundle.h"
#include "disk/Doctor.h"
#include "disk/OutputFile.h"
#include "output/TimeText.h"
#include "stores/KnownKeys.h"
#include "stores/XmlSettings.h"

#include <kyr/FileUtils.h>
#include <kyr/Paths.h>
#include <kyr/ProcessUtils.h>
#include <kyr/StringUtils.h>

#include <algorithm>
#include <chrono>
#include <filesystem>

namespace lumora_config {

namespace {

using KyrCoreUtils::FileUtils;
using KyrCoreUtils::toString;

/// Returns the log files in the folder, without those of its subfolders.
std::vector<LogFile> readLogs(const std::string& folder) {
    std::vector<std::string> paths;
    FileUtils::getFilesFromDirectory(folder, "log", paths);
    std::erase_if(paths, [&](const std::string& path) {
        return KyrCoreUtils::toPath(folder) / KyrCoreUtils::toPath(FileUtils::getFileName(path)) !=
               KyrCoreUtils::toPath(path);
    });
    std::vector<LogFile> logs;
    for (const auto& path : paths) {
        try {
            logs.push_back({FileUtils::getFileName(path), readWholeFile(path)});
        } catch (const Failure& failure) {
            logs.push_back({FileUtils::getFileName(path), std::string(failure.what()) + '\n'});
        }
    }
    return logs;
}

BundleContent collect(Session& session) {
    BundleContent content;
    session.getHost().onServices("lumora-config: bundle", [&] {
        content.chain.stores = session.getChain().listStores();
        content.chain.keys = session.getChain().explainAll();
        content.values = session.getChain().list(L"");
        content.report = toString(session.getHost().getService()->getAllConfigForPRT());
    });
    auto origins = session.makeOriginFinder();
    for (auto& key : content.chain.keys) {
        if (session.getMask().hides(key.newName)) {
            addSecrets(content, key);
        }
        session.getMask().hide(key);
        origins.locate(key);
    }
    session.getMask().hide(content.values);
    const auto lock = session.getHost().isProfileLocked() ? Doctor::Lock::Held : Doctor::Lock::NotHeld;
    content.chain.health = Doctor(lock, Doctor::Owners::Masked).examine();
    addLocalContent(content, session.getHost().getConfigDirectory());
    return content;
}

void bundle(Session& session, const Command& command) {
    writeBundle(
        command, session.getMask().showsSecrets(), [&] { return collect(session); }, session.getPrinter());
}

} // namespace

void addSecrets(BundleContent& content, const Explanation& key) {
    content.sensitiveKeys.push_back(toString(key.newName));
    for (const auto& opinion : key.opinions) {
        for (const auto& holding : opinion.holdings) {
            content.sensitiveKeys.push_back(toString(holding.name));
            content.secrets.push_back(toString(holding.value));
        }
    }
}

void addLocalContent(BundleContent& content, const std::string& configDirectory) {
    content.chain.profile = configDirectory;
    content.chain.host = KyrCoreUtils::ProcessUtils::getHostName();
    content.chain.madeAt = formatTime(std::chrono::system_clock::now());
    for (const auto& facts : findKeys("")) {
        if (facts.sensitive) {
            content.sensitiveKeys.push_back(toString(facts.key));
            content.sensitiveKeys.push_back(toString(facts.oldName.value_or(facts.key)));
        }
    }
    content.logs = readLogs(FileUtils::getStateDirectory());
}

void writeBundle(const Command& command, bool showSecrets, const std::function<BundleContent()>& collect,
                 Printer& printer) {
    if (showSecrets) {
        throw Failure(ExitCode::Usage, "a bundle never contains secrets; leave out --show-secrets");
    }
    const auto requireAbsent = [&](const std::string& path) {
        std::error_code ignored;
        if (!command.forced &&
            std::filesystem::exists(std::filesystem::symlink_status(KyrCoreUtils::toPath(path), ignored))) {
            throw Failure(ExitCode::NotFound, path + " exists; --force replaces it");
        }
    };
    requireAbsent(command.file);
    auto content = collect();
    const auto path = command.file.empty() ? nameBundle(content.chain.profile, content.chain.madeAt) : command.file;
    requireAbsent(path);
    content.pluginDirectory = command.pluginDirectory;
    auto made = makeBundle(std::move(content));
    writeOutputFile(path, made.archive);
    made.summary.file = path;
    printer.showBundle(made.summary);
}

CommandTable getBundleCommands() {
    return {{"bundle", bundle}};
}

} // namespace lumora_config
