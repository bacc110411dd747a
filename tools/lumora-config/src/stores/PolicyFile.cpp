#include "PolicyFile.h"

#include "ClientPolicy.h"
#include "PolicyCheck.h"
#include "XmlSettings.h"
#include "output/Failure.h"

#include <kyr/Paths.h>
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
    : path(std::move(filePath)), text(parseRegistryText(readWholeFile(path), HKEY_CURRENT_USER)) {
    // A refusal in line 1 means that the header is wrong.
    if (!text.refusals.empty() && text.refusals.front().line == 1) {
        throw Failure(ExitCode::Environment, path + ":1: " + text.refusals.front().reason);
    }
}

PolicyImport PolicyFile::describe() const {
    PolicyImport import;
    import.file = path;
    for (const auto& section : text.sections) {
        import.taken.push_back(describeSection(section));
    }
    for (const auto& refusal : text.refusals) {
        import.refused.push_back({refusal.line, refusal.reason});
    }
    import.remarks = PolicyCheck::examine(text.sections);
    return import;
}

std::vector<ImportedValue> PolicyFile::listValues() const {
    std::vector<ImportedValue> values;
    for (const auto& section : text.sections) {
        for (const auto& entry : section.entries) {
            const auto& name = entry.value.name;
            values.push_back({entry.line, name.empty() ? L"@" : name,
                              entry.deletion ? std::wstring() : getPolicyText(entry.value), entry.deletion});
        }
    }
    return values;
}

void PolicyFile::install() const {
    if (getAdministratorRegistryFolder().empty()) {
        throw Failure(ExitCode::Environment, path + ": this system has a registry; import the file there");
    }
    if (const int error = installRegistryText(text, KyrCoreUtils::toText(KyrCoreUtils::toPath(path).filename()));
        error != 0) {
        const auto reason = error == EEXIST ? std::string("something there has its name and is not a regular file")
                                            : std::generic_category().message(error);
        throw Failure(ExitCode::Environment, path + ": cannot be written to the user's registry files: " + reason);
    }
}

std::string PolicyFile::getInstalledPath() const {
    const auto folder = KyrCoreUtils::toPath(getUserRegistryFolder());
    auto name = KyrCoreUtils::toText(KyrCoreUtils::toPath(path).filename());
    if (!KyrCoreUtils::caseInsensitiveStringEquals(KyrCoreUtils::toText(KyrCoreUtils::toPath(name).extension()),
                                                   ".reg")) {
        name += ".reg";
    }
    return KyrCoreUtils::toText(folder / KyrCoreUtils::toPath(name));
}

std::string PolicyFile::getInstalledText() const {
    return formatRegistryText(text.sections);
}

} // namespace lumora_config
