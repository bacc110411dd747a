#include "ProtectedFiles.h"

#include "DurableFile.h"
#include "EncryptFileUtilsLogger.h"
#include "PathParts.h"
#include "ProtectedFileFormat.h"
#include "Quarantine.h"

#include <optional>
#include <system_error>

namespace zel::storage {

namespace {

ReadOutcome outcomeOf(KeyResult result) {
    switch (result) {
    case KeyResult::Found:
        return {};
    case KeyResult::Absent:
        return {ReadResult::WrongKey, "its key is absent"};
    case KeyResult::Malformed:
        return {ReadResult::WrongKey, "its key is malformed"};
    default:
        return {ReadResult::Unreadable, "its key can't be had"};
    }
}

std::string describe(int error) {
    return std::error_code(error, std::generic_category()).message();
}

/// Logs only the name of the file: folders may identify the user.
void logDebug(std::string_view function, int line, std::string_view action, const std::string& path,
              std::string_view reason) {
    if (ZelLog_isDebugEnabled(encryptFileUtilsLogger)) {
        std::string text(action);
        text.append(splitPath(path).name).append(": ").append(reason);
        ZelLog(encryptFileUtilsLogger, ZelLogLevel::Debug, __FILE__, line, function, text);
    }
}

} // namespace

std::string ProtectedFiles::physicalPath(const std::string& path) {
    const PathParts parts = splitPath(path);
    return parts.prefix + parts.name.substr(0, parts.name.rfind('.')) + ".dat";
}

ReadResult ProtectedFiles::read(const std::string& path, ProtectedText& content,
                                FileCategoryType::FileCategory category) {
    const auto use = [&content](std::string_view clear) { content.setContent(clear.data(), clear.size()); };
    const std::string physical = physicalPath(path);
    std::string used = physical;
    ReadOutcome outcome = readOne(physical, category, use);
    if (outcome.result == ReadResult::Absent && physical != path) {
        used = path;
        outcome = readOne(path, category, use);
    }
    if (outcome.result == ReadResult::Ok && content.isEmpty()) {
        outcome = {ReadResult::Unreadable, "its content can't be enciphered"};
    }
    if (outcome.result != ReadResult::Ok) {
        logDebug("zel::storage::ProtectedFiles::read", __LINE__, "Protected file not read, ", used, outcome.reason);
    }
    return outcome.result;
}

std::string ProtectedFiles::write(const std::string& path, std::string_view clear,
                                  FileCategoryType::FileCategory category) {
    std::optional<std::string> file;
    {
        MasterKey key;
        if (const KeyResult found = keys.findOrMake(category, key); found != KeyResult::Found) {
            return found == KeyResult::Locked ? "another process locks the keys" : "the key can't be read or made";
        }
        file = ProtectedFileFormat::seal(clear, category, key);
    }
    if (!file) {
        return "the content is too long, or the cipher failed";
    }
    if (const int error = preserveIfUnreadable(path, category); error != 0) {
        return "the unreadable file in its place can't be kept: " + describe(error);
    }
    const int error = DurableFile::replace(layer, path, *file);
    return error == 0 ? std::string() : describe(error);
}

ReadOutcome ProtectedFiles::examine(const std::string& path, FileCategoryType::FileCategory category) {
    return readOne(path, category, [](std::string_view) {});
}

bool ProtectedFiles::hasHeader(const std::string& path) {
    std::string file;
    return readRegularFile(layer, path, ProtectedFileFormat::maximumFileLength, file).result == ReadResult::Ok &&
           ProtectedFileFormat::hasMagic(file);
}

void ProtectedFiles::moveAsideIfUnusable(const std::string& path, FileCategoryType::FileCategory category) {
    const ReadOutcome outcome = examine(path, category);
    const bool isOfAnotherKey = outcome.result == ReadResult::WrongKey && hasKey(category);
    if (!isOfAnotherKey && outcome.result != ReadResult::Damaged && outcome.result != ReadResult::Empty) {
        return;
    }
    const std::string shown = ZelLogger_replacePIIData(path) + ", which can't be read (" + std::string(outcome.reason);
    std::string keptAs;
    if (const int error = Quarantine(layer).moveAside(path, keptAs); error != 0) {
        ZelLog(encryptFileUtilsLogger, ZelLogLevel::Error, ZEL_HERE,
               "Failed to move aside " + shown + "): " + describe(error));
        return;
    }
    ZelLog(encryptFileUtilsLogger, ZelLogLevel::Warning, ZEL_HERE,
           "Moved aside " + shown + "), as " + splitPath(keptAs).name);
    movedFiles.add({path, keptAs, outcome.result});
}

std::string ProtectedFiles::restore(const std::string& keptAs) {
    const std::string original = Quarantine::parse(keptAs).original;
    if (original.empty()) {
        return "it is not the name of a file that was moved aside";
    }
    if (const ReadOutcome outcome = examine(keptAs, categoryOf(original)); outcome.result != ReadResult::Ok) {
        return "it can't be read: " + std::string(outcome.reason);
    }
    const int error = Quarantine(layer).putBack(keptAs, original);
    return error == 0 ? std::string() : describe(error);
}

FileCategoryType::FileCategory ProtectedFiles::categoryOf(const std::string& path) {
    const bool isUsersFile = splitPath(path).name.starts_with("lumoraLocalConfig");
    return isUsersFile || path.find("UrlProvisioningConfigStore") == std::string::npos ? FileCategoryType::UserData
                                                                                       : FileCategoryType::DeviceData;
}

ReadOutcome ProtectedFiles::readOne(const std::string& path, FileCategoryType::FileCategory category,
                                    const std::function<void(std::string_view)>& use) {
    std::string file;
    if (const ReadOutcome got = readRegularFile(layer, path, ProtectedFileFormat::maximumFileLength, file);
        got.result != ReadResult::Ok) {
        return got;
    }
    if (const ReadOutcome seen = ProtectedFileFormat::inspect(file, category); seen.result != ReadResult::Ok) {
        return seen;
    }
    MasterKey key;
    if (const ReadOutcome found = outcomeOf(keys.find(category, key)); found.result != ReadResult::Ok) {
        return found;
    }
    return ProtectedFileFormat::open(file, category, key, use);
}

/// Keeps a copy of the file if it is unreadable. Returns 0 or an errno value.
int ProtectedFiles::preserveIfUnreadable(const std::string& path, FileCategoryType::FileCategory category) {
    const ReadOutcome outcome = examine(path, category);
    if (outcome.result == ReadResult::Ok || outcome.result == ReadResult::Absent) {
        return 0;
    }
    std::string keptAs;
    const int error = Quarantine(layer).preserve(path, keptAs);
    if (error != 0 || keptAs.empty()) {
        return error;
    }
    ZelLog(encryptFileUtilsLogger, ZelLogLevel::Warning, ZEL_HERE,
           "Replacing " + splitPath(path).name + ", which can't be read (" + std::string(outcome.reason) +
               "), kept as " + splitPath(keptAs).name);
    movedFiles.add({path, keptAs, outcome.result});
    return 0;
}

bool ProtectedFiles::hasKey(FileCategoryType::FileCategory category) {
    MasterKey key;
    return keys.find(category, key) == KeyResult::Found;
}

} // namespace zel::storage
