#include "ServiceScript.h"

#include "ChainStep.h"
#include "Comparison.h"
#include "LoadedService.h"
#include "ServiceModel.h"
#include "UnsyncedFiles.h"
#include "Vocabulary.h"

namespace config_model {

namespace {

using Kind = ServiceStep::Kind;

std::string answer(bool yes) {
    return yes ? "true" : "false";
}

} // namespace

ServiceScript::ServiceScript(Service& subject) : service(subject) {
    service.fired = [this](const std::wstring& key, const std::string& property) {
        trace.push_back("  " + narrow(key) + " fires " + property);
    };
    service.restart(watchedKeys());
}

const std::vector<std::wstring>& ServiceScript::watchedKeys() {
    static const std::vector<std::wstring> keys(std::begin(vocabulary::watchedRecords),
                                                std::end(vocabulary::watchedRecords));
    return keys;
}

std::vector<std::string> ServiceScript::perform(const ServiceStep& step) {
    trace.clear();
    trace.push_back("answer: " + call(step));
    for (const auto& key : watchedKeys()) {
        trace.push_back(describe(service.getRecord(key)));
    }
    for (const auto& file : service.listCachedFiles()) {
        trace.push_back("file: " + file);
    }
    return trace;
}

std::vector<std::string> ServiceScript::readEverything() {
    std::vector<std::string> lines{"started: " + answer(service.isStarted())};
    for (const auto& key : vocabulary::serviceKeys) {
        lines.push_back(read(key, false));
        lines.push_back("without local: " + read(key, true));
        lines.push_back("sensitive: " + answer(service.isKeySensitive(key)) + answer(service.isRecordSensitive(key)));
    }
    for (const auto& name : vocabulary::serviceStores) {
        lines.push_back(name + ": " + service.findStore(name));
    }
    return lines;
}

std::string ServiceScript::read(const std::wstring& key, bool skipLocal) {
    std::wstring value;
    std::wstring store;
    bool fromLegacyKey = false;
    const bool found = service.getConfig(key, value, store, fromLegacyKey, skipLocal);
    return narrow(key) + (found ? " found " : " missed ") + narrow(value) + " [" + narrow(store) + "]" +
           (fromLegacyKey ? " old name" : "");
}

std::string ServiceScript::call(const ServiceStep& step) {
    switch (step.kind) {
    case Kind::Restart:
        service.restart(watchedKeys());
        return "none";
    case Kind::Start:
        service.start();
        return "none";
    case Kind::Stop:
        service.stop();
        return "none";
    case Kind::Refresh:
        service.refresh();
        return "none";
    case Kind::PowerDown:
        service.powerDown();
        return "none";
    case Kind::ResetAllData:
        service.resetAllData();
        return "none";
    case Kind::AddStore:
        service.addStore(step.store);
        return "none";
    case Kind::UpdateStore: {
        std::vector<std::wstring> oldKeys;
        for (const auto& [key, value] : step.pairs) {
            oldKeys.push_back(key);
        }
        service.updateStore(step.store, oldKeys);
        return "none";
    }
    case Kind::RemoveStore:
        return answer(service.removeStore(step.name));
    case Kind::FindStore:
        return answer(service.isStorePresent(step.name)) + " " + service.findStore(step.name);
    case Kind::RemoveAllCachedStores:
        service.removeAllCachedStores();
        return "none";
    case Kind::SetMdmConfig:
        service.setMdmConfig(step.pairs);
        return "none";
    case Kind::GetConfig:
        return read(step.key, step.flag);
    case Kind::GetValueOfStore:
        return narrow(service.getValueOfStore(step.name, step.key));
    case Kind::SetConfig:
        return answer(service.setConfig(step.key, step.value));
    case Kind::SetConfigMap:
        return answer(service.setConfig(step.pairs));
    case Kind::SetInMemoryConfig:
        return answer(service.setInMemoryConfig(step.key, step.value));
    case Kind::ResetConfig:
        service.resetConfig(step.key);
        return "none";
    case Kind::ResetStore:
        service.resetStore(step.name);
        return "none";
    case Kind::Provision:
        return answer(service.provision(step.value));
    case Kind::ResetProvisioning:
        return answer(service.resetProvisioning());
    case Kind::SetKeySensitive:
        service.setKeySensitive(step.key);
        return "none";
    case Kind::SetPolicy:
        service.setPolicy(step.key, step.value);
        return "none";
    case Kind::SetFipsMode:
        service.setFipsMode(step.flag);
        return "none";
    }
    return "";
}

std::string compareServices(std::span<const ServiceStep> steps) {
    const UnsyncedFiles files;
    ServiceModel model(vocabulary::defaults);
    LoadedService product(vocabulary::defaults);
    ServiceScript onModel(model);
    ServiceScript onProduct(product);
    return compare(
        steps, [&](const ServiceStep& step) { return onModel.perform(step); },
        [&](const ServiceStep& step) { return onProduct.perform(step); }, [&] { return onModel.readEverything(); },
        [&] { return onProduct.readEverything(); });
}

} // namespace config_model
