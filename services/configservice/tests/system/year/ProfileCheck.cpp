#include "ProfileCheck.h"

#include <zel/FipsUtils.h>

#include <CacheConfigStore.h>
#include <LocalFileConfigStore.h>

#include <algorithm>
#include <optional>

namespace simulated_year {

using config_model::ModelStore;
using config_model::Pairs;
using config_model::ServiceModel;

namespace {

constexpr std::size_t mostKeptFiles = 5;
/// The vocabulary of the scripts cannot fill a file of this size, unless something is written twice.
constexpr std::size_t largestExpectedFile = 8192;
/// The client's two files, the copies of a dozen stores, five files moved aside of each, keys, policies and defaults.
constexpr std::size_t mostExpectedFiles = 100;

constexpr std::string_view keptSuffix = ".unreadable";
const std::string otherFiles[] = {
    "administrator/HKEY_CURRENT_USER/policy.reg",
    "config/RegistryConfigStore.txt",
    "data/keys/cat0.key",
    "data/keys/cat2.key",
    "data/registry/policy.reg",
    "resources/lumora-config-defaults-backup.xml",
    "resources/lumora-config-defaults.xml",
};

bool isOtherFile(const std::string& path) {
    const bool isMarkOfLock = path.starts_with("state/profile-") && path.ends_with(".lock");
    return isMarkOfLock || std::find(std::begin(otherFiles), std::end(otherFiles), path) != std::end(otherFiles);
}

struct KeptName {
    std::string original;
    unsigned long number = 0; ///< 0 if it is not the name of a file that was moved aside.
};

KeptName splitKeptName(const std::string& path) {
    const auto at = path.rfind(keptSuffix);
    if (at == std::string::npos) {
        return {path, 0};
    }
    const auto rest = path.substr(at + keptSuffix.size());
    return {path.substr(0, at), rest.empty() ? 1 : std::stoul(rest.substr(1))};
}

std::string keptNameOf(const std::string& original, unsigned long number) {
    return original + std::string(keptSuffix) + (number == 1 ? "" : "." + std::to_string(number));
}

/// Returns the numbers of the kept files of `original`, lowest first.
std::set<unsigned long> findKeptNumbers(const FolderContent& content, const std::string& original) {
    std::set<unsigned long> numbers;
    for (const auto& [path, bytes] : content) {
        if (const auto name = splitKeptName(path); name.number > 0 && name.original == original) {
            numbers.insert(name.number);
        }
    }
    return numbers;
}

void compare(const std::string& name, const Pairs& expected, ZelUnified::ConfigStore& store,
             std::vector<std::string>& lines) {
    const auto describe = [](std::vector<std::string> entries) {
        std::sort(entries.begin(), entries.end());
        std::string text;
        for (const auto& entry : entries) {
            text += entry + "; ";
        }
        return text;
    };
    std::vector<std::string> wanted;
    std::vector<std::string> held;
    const auto isHidden = [](const std::wstring& key) { // a copy has it, and does not return it
        return config_model::isSame(key, L"CertificateValidationEnabled");
    };
    for (const auto& [key, value] : ModelStore({.name = name, .pairs = expected}).shape.pairs) {
        wanted.push_back(
            config_model::narrow(config_model::toSmallLetters(key) + L"=" + (isHidden(key) ? L"" : value)));
    }
    for (const auto& key : store.getKeys()) {
        std::wstring value;
        store.getValue(key, value);
        held.push_back(config_model::narrow(config_model::toSmallLetters(key) + L"=" + (isHidden(key) ? L"" : value)));
    }
    if (describe(wanted) != describe(held)) {
        lines.push_back(name + " has " + describe(held) + " and should have " + describe(wanted));
    }
}

} // namespace

std::string pathInConfig(const std::string& name) {
    return name.starts_with("cached") ? "Cache/" + name : name;
}

std::vector<std::string> ProfileCheck::findDeviations(const ServiceModel::Files& files,
                                                      const std::map<std::string, std::string>& damaged) {
    const auto present = readFolder(profile.root());
    mostFiles = std::max(mostFiles, present.size());
    auto lines = findForeignFiles(present, files);
    for (const auto& [path, content] : present) {
        largestFile = std::max(largestFile, content.size());
        if (content.size() > largestExpectedFile) {
            lines.push_back(path + " has " + std::to_string(content.size()) + " bytes");
        }
    }
    if (present.size() > mostExpectedFiles) {
        lines.push_back("the profile has " + std::to_string(present.size()) + " files");
    }
    for (const auto& [name, content] : damaged) {
        const auto path = "config/" + pathInConfig(name);
        const auto inPlace = present.find(path);
        bool isKept = inPlace != present.end() && inPlace->second == content;
        for (const auto number : findKeptNumbers(present, path)) {
            isKept = isKept || present.at(keptNameOf(path, number)) == content;
        }
        if (!isKept) {
            lines.push_back("the damaged " + name + " was not kept");
        }
    }
    const auto wrong = findWrongContent(files);
    lines.insert(lines.end(), wrong.begin(), wrong.end());
    return lines;
}

std::vector<std::string> ProfileCheck::findForeignFiles(const FolderContent& present,
                                                        const ServiceModel::Files& files) {
    std::set<std::string> expected;
    for (const auto* group : {&files.user, &files.copies}) {
        for (const auto& [name, pairs] : *group) {
            expected.insert("config/" + pathInConfig(name));
        }
    }
    std::vector<std::string> lines;
    std::map<std::string, std::size_t> kept;
    for (const auto& [path, content] : present) {
        const auto name = splitKeptName(path);
        const bool isProtected = path.starts_with("config/") && path.ends_with(".dat");
        highestNumber = std::max(highestNumber, name.number);
        if (name.number > 0 && ++kept[name.original] == mostKeptFiles + 1) {
            lines.push_back("more than five files were moved aside of " + name.original);
        } else if (name.number == 0 && !isOtherFile(path) && (!isProtected || !expected.contains(path))) {
            lines.push_back("there should be no " + path);
        }
        expected.erase(path);
    }
    for (const auto& path : expected) {
        lines.push_back("there is no " + path);
    }
    return lines;
}

std::vector<std::string> ProfileCheck::findWrongContent(const ServiceModel::Files& files) const {
    // In this mode a value that is read is another one than the file has.
    const bool fips = zel::common::FipsUtils::isFipsEnabled();
    zel::common::FipsUtils::overrideFipsMode(false);
    std::vector<std::string> lines;
    for (const auto& [name, pairs] : files.user) {
        if (!files.damaged.contains(name)) {
            ZelUnified::LocalFileConfigStore store("check", 1, profile.config().string(), name, true, true, true);
            compare(name, pairs, store, lines);
        }
    }
    for (const auto& [name, pairs] : files.copies) {
        if (!files.damaged.contains(name)) {
            ZelUnified::CacheConfigStore store("check", 1, (profile.config() / pathInConfig(name)).string());
            compare(name, pairs, store, lines);
        }
    }
    zel::common::FipsUtils::overrideFipsMode(fips);
    return lines;
}

std::vector<std::string> ProfileCheck::findWrongMoves(FolderContent before, const FolderContent& after,
                                                      const std::set<std::string>& moved) {
    for (const auto& name : moved) {
        const auto path = pathInConfig(name);
        auto numbers = findKeptNumbers(before, path);
        const auto number = numbers.empty() ? 1 : *numbers.rbegin() + 1;
        before[keptNameOf(path, number)] = before[path];
        before.erase(path);
        if (numbers.size() >= mostKeptFiles) {
            before.erase(keptNameOf(path, *numbers.begin()));
        }
    }
    std::vector<std::string> lines;
    for (const auto& [path, content] : before) {
        const auto found = after.find(path);
        if (found == after.end()) {
            lines.push_back("the start lost " + path);
        } else if (found->second != content) {
            lines.push_back("the start changed " + path);
        }
    }
    for (const auto& [path, content] : after) {
        if (!before.contains(path)) {
            lines.push_back("the start made " + path);
        }
    }
    return lines;
}

} // namespace simulated_year
