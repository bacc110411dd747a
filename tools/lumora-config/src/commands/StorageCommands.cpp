#include "CommandTable.h"
#include "disk/Doctor.h"
#include "disk/SettingsOnDisk.h"

#include <kyr/FileUtils.h>
#include <zel/EncryptFileUtils.h>

#include <vector>

namespace lumora_config {

using KyrCoreUtils::FileUtils;
using zel::storage::EncryptFileUtils;
using zel::storage::KeptFile;
using zel::storage::ReadResult;

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
        throw Failure(ExitCode::NotFound, "several files were moved aside as '" + name + "'; give the whole path");
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
        throw Failure(ExitCode::Environment, file.keptAs + " is not put back: " + outcome.cause);
    }
    session.getDisk().requireReadable(file.original);
    // The stores still hold what they read before; without a refresh, their next write would overwrite the restored
    // file.
    host.refresh();
    reportDone(session, command,
               file.keptAs + " is put back as " + FileUtils::getFileName(file.original) +
                   "; the stores that are not local are read anew");
}

void doctor(Session& session, const Command& /*command*/) {
    session.getHost().settle();
    showHealth(Doctor(Doctor::Lock::Held).examine(), session.getPrinter());
}

} // namespace

void showHealth(const HealthReport& report, Printer& printer) {
    printer.showHealth(report);
    if (const auto count = report.countAttention(); count != 0) {
        throw Failure(ExitCode::NotFound,
                      std::to_string(count) + (count == 1 ? " item needs" : " items need") + " attention");
    }
}

void addStorageCommands(CommandTable& table) {
    table["doctor"] = doctor;
    table["restore"] = restore;
}

} // namespace lumora_config
