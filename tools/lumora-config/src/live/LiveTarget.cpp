#include "LiveTarget.h"

#include "LiveCommands.h"
#include "LiveReplies.h"
#include "commands/CatalogueCandidates.h"
#include "output/Failure.h"
#include "shell/ShellWords.h"
#include "stores/KnownKeys.h"

#include <kyr/FileUtils.h>
#include <kyr/StringUtils.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

namespace lumora_config {

namespace {

std::vector<Candidate> listKeys() {
    auto keys = listCatalogueKeys();
    for (const auto& listed : toList(InspectionClient().ask({{"verb", "list"}}))) {
        if (!findKeyFacts(listed.key)) {
            keys.push_back({KyrCoreUtils::toString(listed.key), ""});
        }
    }
    return keys;
}

std::vector<Candidate> listStores() {
    std::vector<Candidate> stores;
    for (const auto& store : toStores(InspectionClient().ask({{"verb", "stores"}}))) {
        stores.push_back({store.name, ""});
    }
    return stores;
}

bool mayContainValue(const std::string& line) {
    try {
        const auto words = splitWords(line);
        return std::ranges::any_of(
            words, [](const std::string& word) { return word == "set" || word == "memory" || word == "provision"; });
    } catch (const Failure&) {
        return true;
    }
}

} // namespace

bool LiveTarget::canRun(const std::string& name) const {
    return LiveCommands::canRun(name);
}

void LiveTarget::run(const Command& command) {
    InspectionClient client;
    if (!client.isConnected()) {
        throw Failure(ExitCode::Environment, "the running client has ended, and no other one uses the profile " +
                                                 KyrCoreUtils::FileUtils::getConfigDirectory());
    }
    LiveCommands commands(client, input, printer, showSecrets);
    if (std::exchange(announced, client.getProcess()) != client.getProcess()) {
        commands.announce();
    }
    if (!canRun(command.name)) {
        throw Failure(ExitCode::Environment, "'" + command.name + "' needs the profile for itself, but process " +
                                                 std::to_string(client.getProcess()) + " uses it");
    }
    commands.run(command);
}

CompletionNames LiveTarget::getNames() {
    return {listKeys, listStores, listCatalogueValues};
}

ShellTarget::LineFilter LiveTarget::makeLineFilter() {
    return mayContainValue;
}

} // namespace lumora_config
