#include "KeyCommands.h"

#include "CommandTable.h"
#include "stores/ClosestNames.h"
#include "stores/KnownKeys.h"

#include <kyr/StringUtils.h>

#include <ConfigCatalogue.h>

#include <optional>
#include <utility>

namespace lumora_config {

namespace {

namespace ConfigKeys = ZelUnified::ConfigKeys;

void describeKey(Session& session, const Command& command) {
    const auto key = toWide(command.key);
    KeyDescription description{key, findKeyFacts(key), session.getMask().hides(key), std::nullopt};
    if (description.facts) {
        description.key = description.facts->key;
    }
    session.getHost().onServices("lumora-config: describe",
                                 [&] { description.inForce = session.getChain().read(key); });
    if (description.inForce) {
        description.inForce->value = session.getMask().show(key, description.inForce->value);
    }
    if (!description.facts && !description.inForce) {
        suggestKeys(session, command.key);
        throw Failure(ExitCode::NotFound,
                      "the catalogue does not contain the key '" + command.key + "', and no store holds it");
    }
    session.getPrinter().showDescription(description);
}

/// Returns the names of all defined records.
std::vector<std::string> listKeysInUse(Session& session) {
    std::vector<std::string> keys;
    session.getHost().onServices("lumora-config: keys in use", [&] {
        for (const auto& listed : session.getChain().list(L"")) {
            keys.push_back(KyrCoreUtils::toString(listed.key));
        }
    });
    return keys;
}

} // namespace

void showKnownKeys(const Command& command, Printer& printer) {
    showMatchingKeys(findKeys(command.prefix), command, printer);
}

void showMatchingKeys(std::vector<KeyFacts> keys, const Command& command, Printer& printer) {
    std::erase_if(keys, [&](const KeyFacts& facts) {
        const bool isNamed = matchesPattern(facts.key, toWide(command.prefix)) ||
                             (facts.oldName && matchesPattern(*facts.oldName, toWide(command.prefix)));
        return !isNamed || (command.sensitive && !facts.sensitive) || (command.renamed && !facts.oldName);
    });
    printer.showKeys(keys);
    if (keys.empty()) {
        throw Failure(ExitCode::NotFound, "no such key of the catalogue matches '" + command.prefix + "'" +
                                              suggest(command.prefix, listKnownNames()));
    }
}

void suggestKeys(Session& session, const std::string& key) {
    if (ConfigKeys::findKey(toWide(key)) != nullptr) {
        return;
    }
    std::optional<Reading> reading;
    session.getHost().onServices("lumora-config: known key", [&] { reading = session.getChain().read(toWide(key)); });
    if (reading) {
        return;
    }
    suggestKeys(session.getPrinter(), key, listKeysInUse(session));
}

void suggestKeys(Printer& printer, const std::string& key, const std::vector<std::string>& inUse) {
    auto known = listKnownNames();
    known.insert(known.end(), inUse.begin(), inUse.end());
    if (const auto suggestion = suggest(key, known); !suggestion.empty()) {
        printer.showWarning("the key '" + key + "' is unknown" + suggestion);
    }
}

void requirePermitted(const std::string& key, const std::string& value) {
    const auto* const row = ConfigKeys::findKey(toWide(key));
    if (row != nullptr && !ConfigKeys::permits(*row, toWide(value))) {
        throw Failure(ExitCode::NotFound, "the value of the key '" + spell(key) + "' must be " +
                                              ConfigKeys::describePermittedValues(*row) + "; --force sets it anyway");
    }
}

CommandTable getKeyCommands() {
    return {
        {"keys", [](Session& session, const Command& command) { showKnownKeys(command, session.getPrinter()); }},
        {"describe", describeKey},
    };
}

} // namespace lumora_config
