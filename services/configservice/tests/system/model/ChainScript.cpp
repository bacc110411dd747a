#include "ChainScript.h"

#include "ChainModel.h"
#include "Comparison.h"
#include "ManagerChain.h"
#include "Vocabulary.h"

namespace config_model {

namespace {

using Kind = ChainStep::Kind;

std::string describe(const Reading& reading) {
    return (reading.found ? "found " : "missed ") + narrow(reading.value) + " [" + narrow(reading.store) + "]" +
           (reading.fromLegacyKey ? " old name" : "");
}

std::string describe(const OriginalReading& reading) {
    return (reading.hasOverride ? "overridden " : "plain ") + narrow(reading.value) + " [" + narrow(reading.store) +
           "]" + (reading.fromLegacyKey ? " old name" : "");
}

std::string describe(const Change& change) {
    return narrow(change.key) + ": " + narrow(change.value) + " [" + narrow(change.valueStoreName) + "] | " +
           narrow(change.originalValue) + " [" + narrow(change.originalValueStoreName) + "]" +
           (change.isOverridden ? " overridden" : "") + (change.isDefined ? "" : " undefined") +
           (change.deferFire ? " deferred" : "");
}

std::string answer(bool yes) {
    return yes ? "true" : "false";
}

} // namespace

ChainScript::ChainScript(Chain& subject) : chain(subject) {
    chain.changed = [this](const Change& change) { heard(change.key, describe(change)); };
    chain.mayFire = [this](const std::wstring& key) { heard(key, "fire " + narrow(key)); };
    // The caller does not hold the chain's lock here, and the observer must not acquire it: it reads nothing.
    chain.madeSensitive = [this](const std::wstring& key) { trace.push_back("  sensitive " + narrow(key)); };
    chain.told = [this](const std::string& line) { trace.push_back("  told: " + line); };
    chain.takeLog();
}

std::vector<std::string> ChainScript::perform(const ChainStep& step) {
    trace.clear();
    current = &step;
    announcements = 0;
    trace.push_back("answer: " + call(step));
    current = nullptr;
    for (const auto& name : chain.getTaskNames()) {
        trace.push_back("task: " + name);
    }
    chain.runTasks();
    for (const auto& line : chain.takeLog()) {
        trace.push_back("log: " + line);
    }
    for (const auto& file : chain.listCachedFiles()) {
        trace.push_back("file: " + file);
    }
    return trace;
}

std::vector<std::string> ChainScript::readEverything() {
    std::vector<std::string> lines;
    for (const auto& key : vocabulary::keys) {
        lines.push_back(narrow(key) + ": " + describe(chain.getValue(key, false, "")));
        lines.push_back(narrow(key) + " without local: " + describe(chain.getValue(key, true, "")));
        lines.push_back(narrow(key) + " originally: " + describe(chain.getOriginalValue(key)));
        lines.push_back(narrow(key) + " sensitive: " + answer(chain.isKeySensitive(key)));
    }
    return lines;
}

void ChainScript::heard(const std::wstring& key, const std::string& line) {
    trace.push_back("  " + line);
    trace.push_back("    in force: " + describe(chain.getValue(key, false, "")));
    if (current && ++announcements == current->nestedAt) {
        for (const auto& nested : current->nested) {
            trace.push_back("    from inside: " + call(nested));
        }
    }
}

std::string ChainScript::call(const ChainStep& step) {
    switch (step.kind) {
    case Kind::AddStore:
        chain.addStore(step.store);
        return "none";
    case Kind::UpdateStore: {
        std::vector<std::wstring> oldKeys;
        for (const auto& [key, value] : step.pairs) {
            oldKeys.push_back(key);
        }
        chain.updateExistingStore(step.store, oldKeys);
        return "none";
    }
    case Kind::RemoveStore:
        return answer(chain.removeStore(step.name));
    case Kind::RemoveNonLocalStores:
        chain.removeNonLocalStores();
        return "none";
    case Kind::DestroyStores:
        chain.destroyStores();
        return "none";
    case Kind::FindStore:
        return answer(chain.hasStore(step.name)) + " " + chain.findStore(step.name);
    case Kind::RegisterObserver:
        chain.registerStoreObserver(step.number);
        return "none";
    case Kind::UnregisterObserver:
        chain.unregisterStoreObserver(step.number);
        return "none";
    case Kind::RenewObserver:
        chain.renewStoreObserver(step.number);
        return "none";
    case Kind::GetValue:
        return describe(chain.getValue(step.key, step.flag, step.name));
    case Kind::GetValueOfStore:
        return narrow(chain.getValueOfStore(step.name, step.key));
    case Kind::GetOriginalValue:
        return describe(chain.getOriginalValue(step.key));
    case Kind::SetKeySensitive:
        chain.setKeySensitive(step.key);
        return "none";
    case Kind::StoreValue:
        return answer(chain.storeValue(step.key, step.value));
    case Kind::StoreValues:
        return answer(chain.storeValues(step.pairs));
    case Kind::SetInMemoryValue:
        return answer(chain.setInMemoryValue(step.key, step.value));
    case Kind::RemoveValue:
        return answer(chain.removeValue(step.key));
    case Kind::SetUrlProvisioningData:
        return answer(chain.setUrlProvisioningData(step.value));
    case Kind::ResetConfigData:
        chain.resetConfigData();
        return "none";
    case Kind::ResetStore:
        chain.resetConfigData(step.name);
        return "none";
    case Kind::RemoveAllCachedStores:
        chain.removeAllCachedStores();
        return "none";
    case Kind::RemoveCachedFiles:
        return answer(chain.removeCachedFiles(step.name));
    case Kind::SetFipsMode:
        chain.setFipsMode(step.flag);
        return "none";
    case Kind::PlaceCachedFile:
        chain.placeCachedFile(step.name);
        return "none";
    }
    return "";
}

std::string compareChains(std::span<const ChainStep> steps) {
    ChainModel model;
    ManagerChain manager;
    ChainScript onModel(model);
    ChainScript onManager(manager);
    return compare(
        steps, [&](const ChainStep& step) { return onModel.perform(step); },
        [&](const ChainStep& step) { return onManager.perform(step); }, [&] { return onModel.readEverything(); },
        [&] { return onManager.readEverything(); });
}

} // namespace config_model
