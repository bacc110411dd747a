#include "CommandTable.h"
#include "KeyCommands.h"
#include "ListSearch.h"
#include "stores/KnownKeys.h"

#include <ConfigCatalogue.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <optional>

namespace lumora_config {

namespace {

std::optional<Reading> readRequested(Session& session, const Command& command) {
    const auto& chain = session.getChain();
    const auto key = toWide(command.key);
    return command.store.empty() ? chain.read(key, command.admin) : chain.readStore(command.store, key);
}

std::string describeMiss(const Command& command) {
    if (!command.store.empty()) {
        return "the store '" + command.store + "' does not hold";
    }
    return command.admin ? "no administrator's store holds" : "no store holds";
}

void get(Session& session, const Command& command) {
    std::optional<Reading> reading;
    session.getHost().onServices("lumora-config: get", [&] { reading = readRequested(session, command); });
    if (reading) {
        reading->value = session.getMask().show(toWide(command.key), reading->value);
    }
    if (!reading && command.fallback) {
        session.getPrinter().showDefault(toWide(command.key), toWide(*command.fallback));
        return;
    }
    if (reading && (command.origin || session.getPrinter().alwaysShowsOrigin())) {
        session.makeOriginFinder().locate(toWide(command.key), *reading);
    }
    session.getPrinter().showValue(toWide(command.key), reading, command.origin);
    if (!reading) {
        suggestKeys(session, command.key);
        throw Failure(ExitCode::NotFound, describeMiss(command) + " the key '" + spell(command.key) + "'");
    }
}

void explain(Session& session, const Command& command) {
    Explanation explanation;
    session.getHost().onServices("lumora-config: explain",
                                 [&] { explanation = session.getChain().explain(toWide(command.key)); });
    session.getMask().hide(explanation);
    session.makeOriginFinder().locate(explanation);
    session.getPrinter().showExplanation(explanation);
    if (!explanation.inForce) {
        suggestKeys(session, command.key);
        throw Failure(ExitCode::NotFound, "no store holds the key '" + spell(command.key) + "'");
    }
}

/// Returns the keys of one store, with the flag of the effective value.
std::vector<ListedValue> listStore(Session& session, const Command& command) {
    auto inForce = session.getChain().list(L"");
    const auto store = session.getHost().getFeatureSet()->getConfigStoreByName(command.store);
    if (!store) {
        throw Failure(ExitCode::NotFound, "there is no store '" + command.store + "'");
    }
    std::map<std::wstring, bool, ZelUnified::caseInsensitiveMapComparator> overridden;
    for (const auto& listed : inForce) {
        overridden[listed.key] = listed.overridden;
    }
    std::map<std::wstring, ListedValue, ZelUnified::caseInsensitiveMapComparator> values;
    std::wstring value;
    for (const auto& key : store->getKeys()) {
        if (store->getValue(key, value)) {
            const std::wstring spelled(ZelUnified::ConfigKeys::spellKey(key));
            values.insert_or_assign(spelled,
                                    ListedValue{spelled, value, toWide(store->getName()), overridden[spelled]});
        }
    }
    std::vector<ListedValue> listed;
    std::ranges::transform(values, std::back_inserter(listed), [](const auto& entry) { return entry.second; });
    return listed;
}

void list(Session& session, const Command& command) {
    std::vector<ListedValue> values;
    session.getHost().onServices("lumora-config: list", [&] {
        values = command.store.empty() ? session.getChain().list(L"") : listStore(session, command);
    });
    session.getMask().hide(values);
    removeMismatches(values, command, [&](const std::wstring& key) { return session.getMask().hides(key); });
    session.getPrinter().showList(values);
    if (values.empty()) {
        throw Failure(ExitCode::NotFound, describeEmptyList(command));
    }
}

void stores(Session& session, const Command& /*command*/) {
    std::vector<StoreFacts> facts;
    session.getHost().onServices("lumora-config: stores", [&] { facts = session.getChain().listStores(); });
    session.getPrinter().showStores(facts);
}

} // namespace

CommandTable getReadCommands() {
    return {{"get", get}, {"explain", explain}, {"list", list}, {"stores", stores}};
}

} // namespace lumora_config
