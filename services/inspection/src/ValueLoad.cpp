#include "ValueLoad.h"

#include "StorableText.h"

#include <ConfigCatalogue.h>

#include <string>

namespace inspection {

using Code = RequestError::Code;
namespace ConfigKeys = ZelUnified::ConfigKeys;

ValueLoad::ValueLoad(const InspectionRequest& request) : dryRun(request.dryRun) {
    for (const auto& value : request.values) {
        if (value.key.empty()) {
            throw RequestError(Code::Refused, "a key is empty");
        }
        if (!request.force) {
            requireStorableKey(value.key);
            requireStorableValue(value.value);
            requirePermitted(value.key, value.value);
        }
        if (!values.emplace(value.key, value.value).second) {
            throw RequestError(Code::Refused, "the key '" + spell(value.key) + "' occurs twice");
        }
    }
}

void ValueLoad::count(const ConfigInspector& inspector) {
    const auto store = inspector.getFeatureSet().getConfigStoreByName(std::string(ConfigKeys::localFileConfigStore));
    std::wstring held;
    for (const auto& [key, value] : values) {
        const bool isHeld = store && store->getValue(key, held);
        ++(!isHeld ? added : held == value ? unchanged : changed);
    }
}

void ValueLoad::set(const ConfigInspector& inspector) const {
    if (!values.empty() && !inspector.getFeatureSet().setConfig(values)) {
        throw RequestError(Code::Refused, "no store accepts values");
    }
}

Json ValueLoad::describe() const {
    return {{"type", "load"}, {"dryRun", dryRun},   {"set", values.size()},
            {"added", added}, {"changed", changed}, {"unchanged", unchanged}};
}

} // namespace inspection
