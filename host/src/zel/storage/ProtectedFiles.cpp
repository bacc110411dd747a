#include "ProtectedFiles.h"

#include "DurableFile.h"
#include "EncryptFileUtilsLogger.h"
#include "PathParts.h"
#include "ProtectedFileFormat.h"
#include "Quarantine.h"

#include <optional>

namespace zel::storage {

namespace {

ZelLogger& logger = encryptFileUtilsLogger();

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

/// The name alone: folders may tell who the user is.
void logDebug(std::string_view function, int line, std::string_view action, const std::string& path,
              std::string_view reason) {
    if (ZelLog_isDebugEnabled(logger)) {
        std::string text(action);
        text.append(splitPath(path).name).append(": ").append(reason);
        ZelLog(logger, ZelLogLevel::Debug, __FILE__, line, function, text);
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

bool ProtectedFiles::write(const std::string& path, std::string_view clear, FileCategoryType::FileCategory category) {
    constexpr std::string_view function = "zel::storage::ProtectedFiles::write";
    const std::string physical = physicalPath(path);
    std::optional<std::string> file;
    {
        MasterKey key;
        if (clear.empty() || keys.findOrMake(category, key) != KeyResult::Found) {
            logDebug(function, __LINE__, "Protected file not written, ", physical,
                     clear.empty() ? "no content" : "no key");
            return false;
        }
        file = ProtectedFileFormat::seal(clear, category, key);
    }
    if (!file) {
        logDebug(function, __LINE__, "Protected file not written, ", physical, "too long, or no cipher");
        return false;
    }
    if (!keepIfUnreadable(physical, category)) {
        logDebug(function, __LINE__, "Protected file not written, ", physical, "the unreadable one can't be kept");
        return false;
    }
    if (const int error = DurableFile::replace(layer, physical, *file); error != 0) {
        logDebug(function, __LINE__, "Protected file not written, ", physical, "error " + std::to_string(error));
        return false;
    }
    return true;
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

bool ProtectedFiles::keepIfUnreadable(const std::string& path, FileCategoryType::FileCategory category) {
    const ReadOutcome outcome = readOne(path, category, [](std::string_view) {});
    if (outcome.result == ReadResult::Ok || outcome.result == ReadResult::Absent) {
        return true;
    }
    if (keepUnreadable(layer, path) != 0) {
        return false;
    }
    const std::string name = splitPath(path).name;
    ZelLog(logger, ZelLogLevel::Warning, ZEL_HERE,
           "Replacing " + name + ", which can't be read (" + std::string(outcome.reason) + "), kept as " + name +
               ".unreadable");
    return true;
}

} // namespace zel::storage
