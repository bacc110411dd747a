#include "StartedState.h"

#include "CallSteps.h"

#include <limits>

namespace config_model {

HistoryState makeStartedState(const Pairs& policy, const std::vector<Call>& before) {
    HistoryState state(policy);
    const auto run = [&state](const Call& call) { CallSteps::runAll(state, call); };
    state.data.chain.addStore(StoreShape{.kind = StoreShape::Kind::Defaults,
                                         .name = "lumora-config-defaults.xml",
                                         .priority = std::numeric_limits<int>::max(),
                                         .pairs = shippedDefaults});
    run({.kind = Call::Kind::Refresh});
    run({.kind = Call::Kind::Start});
    for (const auto& key : watchedKeys) {
        state.data.records.get(key, false);
    }
    for (const auto& call : before) {
        run(call);
    }
    while (!state.data.chain.getTasks().empty()) {
        run({.kind = Call::Kind::RunBackground});
    }
    state.takeFired();
    state.takePosted();
    state.data.backgroundRun = 0;
    return state;
}

std::string describeLookup(const std::wstring& key, const Reading& reading) {
    return narrow(key) + (reading.found ? " found " : " missed ") + narrow(reading.value) + " [" +
           narrow(reading.store) + "]" + (reading.fromLegacyKey ? " old name" : "");
}

std::vector<std::string> describeEnd(HistoryState& state) {
    std::vector<std::string> lines;
    for (const auto& key : watchedKeys) {
        lines.push_back(describe(state.data.records.get(key, false)));
        lines.push_back(describeLookup(key, state.data.chain.getValue(key, false, "")));
    }
    for (const auto& file : state.data.chain.getCachedFiles()) {
        lines.push_back("file: " + file);
    }
    return lines;
}

} // namespace config_model
