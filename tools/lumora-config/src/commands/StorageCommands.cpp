#include "CommandTable.h"
#include "disk/Doctor.h"
#include "disk/ResetFiles.h"
#include "disk/SettingsOnDisk.h"
#include "stores/PolicyFile.h"

#include <kyr/FileUtils.h>
#include <kyr/StringUtils.h>
#include <zel/EncryptFileUtils.h>

#include <ConfigKeys.h>
#include <StoreRemoval.h>

#include <optional>
#include <vector>

namespace lumora_config {

using KyrCoreUtils::FileUtils;
using zel::storage::EncryptFileUtils;
using zel::storage::KeptFile;
using zel::storage::ReadResult;
namespace ConfigKeys = ZelUnified::ConfigKeys;

namespace {

/// Returns the file that was moved aside under this name or path.
KeptFile findMovedAside(const std::string& configDirectory, const std::string& name) {
    std::vector<KeptFile> found;
    for (const auto& file : EncryptFileUtils::listMovedAside(configDirectory)) {
        if (file.keptAs == name || FileUtils::getFileName(file.keptAs) == name) {
            found.push_back(file);
        }
    }
    if (found.empty()) {
        throw Failure(ExitCode::NotFound, "no file was moved aside as '" + name + "'; 'doctor' lists them");
    }
    if (found.size() > 1) {
        throw Failure(ExitCode::NotFound, "several files were moved aside as '" + name + "'; specify its path");
    }
    return found.front();
}

void restore(Session& session, const Command& command) {
    auto& host = session.getHost();
    host.settle();
    const auto file = findMovedAside(host.getConfigDirectory(), command.file);
    if (file.state != ReadResult::Ok) {
        throw Failure(ExitCode::NotFound, file.keptAs + " is " + describe(file.state) + "; nothing is changed");
    }
    if (const auto outcome = EncryptFileUtils::restoreMovedAside(file.keptAs); !outcome.succeeded) {
        throw Failure(ExitCode::Environment, file.keptAs + " cannot be restored: " + outcome.cause);
    }
    session.getDiskCheck().requireReadable(file.original);
    // The stores still hold what they read before; without a refresh, their next write would overwrite the restored
    // file.
    host.refresh();
    reportDone(session, command,
               file.keptAs + " is restored as " + FileUtils::getFileName(file.original) +
                   "; the stores that are not local have read their sources again");
}

void doctor(Session& session, const Command& /*command*/) {
    session.getHost().settle();
    showHealth(Doctor(Doctor::Lock::Held).examine(), session.getPrinter());
}

/// A reset empties the configuration directory. A wrong directory may contain files of other programs.
void requireNoForeignFiles() {
    const auto directory = FileUtils::getConfigDirectory();
    const auto foreign = findForeignFiles(directory);
    if (foreign.empty()) {
        return;
    }
    auto message = directory + " contains files that are not the client's; --force deletes them too: ";
    for (const auto& file : foreign) {
        message += (&file == &foreign.front() ? "" : ", ") + file;
    }
    throw Failure(ExitCode::NotFound, message);
}

void resetData(Session& session, const Command& command) {
    if (!command.confirmed) {
        throw Failure(ExitCode::Usage,
                      "reset-data removes the user's settings and the cached stores; confirm it with --yes");
    }
    if (!command.forced) {
        requireNoForeignFiles();
    }
    session.getHost().resetData();
    session.forgetAllExpected();
    session.getDiskCheck().requireReset();
    reportDone(session, command, "the client's configuration is reset");
}

/// Returns the file's values as they may be shown. The service marks such keys only when it reads the policy.
std::vector<ImportedValue> listShownValues(const Session& session, const PolicyFile& policy) {
    auto values = policy.listValues();
    for (auto& value : values) {
        const bool isPassword = KyrCoreUtils::caseInsensitiveFind(value.key, ConfigKeys::connectionPassword) >= 0;
        const bool hidden = isPassword && !session.getMask().showsSecrets();
        value.value = hidden ? ConfigKeys::valueHidden : session.getMask().show(value.key, value.value);
    }
    return values;
}

/// Returns what is wrong with the file in one sentence, or "".
std::string summarize(const PolicyImport& import) {
    const auto refused = import.refused.size();
    const auto ineffective = import.countIneffective();
    std::string text = refused == 0 ? "" : std::to_string(refused) + " of its lines are refused";
    if (ineffective != 0) {
        text += (text.empty() ? "" : ", ") + std::to_string(ineffective) + " need attention";
    }
    return text;
}

void checkPolicy(Session& session, const Command& command) {
    const PolicyFile policy(command.file);
    auto import = policy.describe();
    import.dryRun = true;
    import.values = listShownValues(session, policy);
    session.getPrinter().showImport(import);
    const auto trouble = summarize(import);
    if (!trouble.empty()) {
        throw Failure(ExitCode::NotFound, command.file + ": " + trouble + "; nothing is changed");
    }
    reportDone(session, command, command.file + " is valid; nothing is changed");
}

void importPolicy(Session& session, const Command& command) {
    if (command.dryRun) {
        checkPolicy(session, command);
        return;
    }
    const PolicyFile policy(command.file);
    auto import = policy.describe();
    // Policies may contain keys of other services.
    std::erase_if(import.remarks,
                  [](const PolicyRemark& remark) { return remark.kind == PolicyRemark::Kind::UnknownKey; });
    if (!import.taken.empty()) {
        policy.install();
        DiskCheck::requireFile(policy.getInstalledPath(), policy.getInstalledText());
    }
    session.getPrinter().showImport(import);
    if (import.taken.empty()) {
        throw Failure(ExitCode::NotFound, command.file + ": contains nothing for the current user; nothing is changed");
    }
    constexpr auto when = " from the next start or refresh on";
    const auto trouble = summarize(import);
    if (!trouble.empty()) {
        throw Failure(ExitCode::NotFound, command.file + ": " + trouble + "; the others apply" + when);
    }
    reportDone(session, command, command.file + " applies" + when);
}

void removeStore(Session& session, const Command& command) {
    const auto& host = session.getHost();
    if (!host.isStarted()) {
        throw Failure(ExitCode::NotFound, "a store can be removed only while the feature set is started");
    }
    std::optional<ZelUnified::StoreRemoval> removal;
    host.onServices("lumora-config: remove-store", [&] {
        removal = ZelUnified::StoreRemoval::find(*host.getFeatureSet(), host.getConfigDirectory(), command.store);
        if (removal) {
            removal->removeFromChain(*host.getFeatureSet(), *host.getService());
        }
    });
    if (!removal) {
        throw Failure(ExitCode::NotFound, "there is no store '" + command.store + "'");
    }
    host.settle();
    const auto check = session.getDiskCheck();
    for (const auto& path : removal->getCopyPaths()) {
        FileUtils::removeFile(path);
        check.requireGone(path);
    }
    if (const auto& record = removal->getRemainingRecord()) {
        check.requireRecord(*record);
    }
    reportDone(session, command, removal->describe());
}

} // namespace

void showHealth(const HealthReport& report, Printer& printer) {
    printer.showHealth(report);
    if (const auto count = report.countAttention(); count != 0) {
        throw Failure(ExitCode::NotFound,
                      std::to_string(count) + (count == 1 ? " item needs" : " items need") + " attention");
    }
}

CommandTable getStorageCommands() {
    return {{"doctor", doctor},
            {"restore", restore},
            {"reset-data", resetData},
            {"import-policy", importPolicy},
            {"remove-store", removeStore}};
}

} // namespace lumora_config
