#include "CompletionCommand.h"

#include "CatalogueCandidates.h"
#include "CommandLine.h"
#include "Completion.h"
#include "disk/ProfileNames.h"
#include "host/HostFolders.h"
#include "output/Failure.h"
#include "stores/KnownKeys.h"

#include <kyr/FileUtils.h>
#include <kyr/StringUtils.h>

#include <exception>
#include <utility>

namespace lumora_config {

namespace {

/// Sets the directories that the words name. Returns false if the program would refuse them.
bool useProfile(const CommandLineCursor& cursor) {
    KyrCoreUtils::HostDirectories directories{cursor.getValue("--config-dir"), cursor.getValue("--data-dir"),
                                              cursor.getValue("--state-dir"), cursor.getValue("--resources-dir")};
    const auto profile = cursor.getValue("--profile");
    if (!profile.empty()) {
        directories = directoriesOfProfile(profile);
    }
    try {
        if (!cursor.isGiven("--trust")) {
            requireTrusted(collectFoldersToTrust(profile, directories));
        }
    } catch (const Failure&) {
        return false;
    }
    KyrCoreUtils::FileUtils::overrideDirectories(directories);
    return true;
}

std::vector<Candidate> listKeys(const CommandLineCursor& cursor) {
    auto keys = listCatalogueKeys();
    if (!useProfile(cursor)) {
        return keys;
    }
    for (const auto& key : readKeysOfProfile()) {
        if (!findKeyFacts(key)) {
            keys.push_back({KyrCoreUtils::toString(key), ""});
        }
    }
    return keys;
}

std::vector<Candidate> listStores(const CommandLineCursor& cursor) {
    std::vector<Candidate> stores;
    if (useProfile(cursor)) {
        for (auto& name : readStoresOfProfile()) {
            stores.push_back({std::move(name), ""});
        }
    }
    return stores;
}

} // namespace

std::string completeCommandLine(const std::vector<std::string>& words) noexcept {
    try {
        std::string answer;
        CommandLine::withGrammar([&](const CLI::App& grammar) {
            const CommandLineCursor cursor(grammar, words);
            const CompletionNames names{[&] { return listKeys(cursor); }, [&] { return listStores(cursor); },
                                        listCatalogueValues};
            answer = complete(cursor, names).toString();
        });
        return answer;
    } catch (const std::exception&) {
        return {}; // A shell cannot show a message while the user types.
    }
}

std::string_view getCompletionScript(std::string_view shell) {
    if (shell == "bash") {
        return getBashCompletion();
    }
    if (shell == "fish") {
        return getFishCompletion();
    }
    if (shell == "zsh") {
        return getZshCompletion();
    }
    throw Failure(ExitCode::Usage, "there is no completion for '" + std::string(shell) + "', only for bash, fish, zsh");
}

} // namespace lumora_config
