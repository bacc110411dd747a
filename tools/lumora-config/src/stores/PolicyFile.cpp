#include "PolicyFile.h"

#include "XmlSettings.h"
#include "output/Failure.h"

#include <kyr/StringUtils.h>
#include <registry/RegistryFiles.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

namespace lumora_config {

using namespace zel::registry;

namespace {

// The client reads a policy into buffers of fixed size. A value that does not fit stops the reading of its key, so the
// values after it are ignored.
constexpr std::size_t longestName = 259;
constexpr std::size_t longestData = 4096;

bool isTooLong(const RegistryTextEntry& entry) {
    return !entry.deletion && (entry.value.name.size() > longestName || entry.value.data.size() > longestData);
}

ImportedKey describeSection(const RegistryTextSection& section) {
    const auto root = section.root == HKEY_LOCAL_MACHINE ? L"HKEY_LOCAL_MACHINE" : L"HKEY_CURRENT_USER";
    ImportedKey key{section.firstLine, root, section.deletion};
    if (!section.path.empty()) {
        key.key += L'\\' + section.path;
    }
    key.valuesDeleted =
        static_cast<std::size_t>(std::ranges::count(section.entries, true, &RegistryTextEntry::deletion));
    key.valuesSet = section.entries.size() - key.valuesDeleted;
    return key;
}

} // namespace

PolicyFile::PolicyFile(std::string filePath)
    : path(std::move(filePath)), text(parseRegistryText(readWholeFile(path), HKEY_CURRENT_USER, AfterFault::GoOn)) {
    // A refusal in line 1 means that the header is wrong.
    if (!text.refusals.empty() && text.refusals.front().line == 1) {
        throw Failure(ExitCode::Environment, path + ":1: " + text.refusals.front().reason);
    }
    dropLongValues();
}

PolicyImport PolicyFile::describe() const {
    PolicyImport import{path, {}, {}};
    for (const auto& section : text.sections) {
        import.taken.push_back(describeSection(section));
    }
    for (const auto& refusal : text.refusals) {
        import.refused.push_back({refusal.line, refusal.reason});
    }
    return import;
}

void PolicyFile::install() const {
    if (const int error = installRegistryText(text, std::filesystem::path(path).filename().string()); error != 0) {
        const auto reason = error == EEXIST ? std::string("something there has its name and is not a regular file")
                                            : std::generic_category().message(error);
        throw Failure(ExitCode::Environment, path + ": cannot be written to the user's registry files: " + reason);
    }
}

std::string PolicyFile::getInstalledPath() const {
    const std::filesystem::path folder(getUserRegistryFolder());
    auto name = std::filesystem::path(path).filename().string();
    if (!KyrCoreUtils::caseInsensitiveStringEquals(std::filesystem::path(name).extension().string(), ".reg")) {
        name += ".reg";
    }
    return (folder / name).string();
}

std::string PolicyFile::getInstalledText() const {
    return formatRegistryText(text.sections);
}

void PolicyFile::dropLongValues() {
    for (auto& section : text.sections) {
        for (const auto& entry : section.entries) {
            if (isTooLong(entry)) {
                text.refusals.push_back({entry.line, "the name or the value is longer than the client can read"});
            }
        }
        std::erase_if(section.entries, isTooLong);
    }
    std::ranges::stable_sort(text.refusals, {}, &RegistryTextRefusal::line);
}

} // namespace lumora_config
