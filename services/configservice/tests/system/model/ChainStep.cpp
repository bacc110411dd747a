#include "ChainStep.h"

#include "ByteSource.h"
#include "Vocabulary.h"

#include <array>

namespace config_model {

namespace {

using Kind = ChainStep::Kind;

constexpr std::size_t mostSteps = 200;

// A kind that is listed more often is chosen more often.
constexpr Kind kinds[] = {
    Kind::AddStore,
    Kind::AddStore,
    Kind::AddStore,
    Kind::AddStore,
    Kind::AddStore,
    Kind::AddStore,
    Kind::UpdateStore,
    Kind::UpdateStore,
    Kind::RemoveStore,
    Kind::RemoveStore,
    Kind::RemoveNonLocalStores,
    Kind::DestroyStores,
    Kind::FindStore,
    Kind::RegisterObserver,
    Kind::UnregisterObserver,
    Kind::RenewObserver,
    Kind::GetValue,
    Kind::GetValue,
    Kind::GetValueOfStore,
    Kind::GetOriginalValue,
    Kind::GetOriginalValue,
    Kind::SetKeySensitive,
    Kind::StoreValue,
    Kind::StoreValue,
    Kind::StoreValue,
    Kind::StoreValues,
    Kind::SetInMemoryValue,
    Kind::SetInMemoryValue,
    Kind::RemoveValue,
    Kind::RemoveValue,
    Kind::SetUrlProvisioningData,
    Kind::ResetConfigData,
    Kind::ResetStore,
    Kind::RemoveAllCachedStores,
    Kind::RemoveCachedFiles,
    Kind::SetFipsMode,
    Kind::PlaceCachedFile,
    Kind::PlaceCachedFile,
};

// The calls that an observer makes during an announcement. They may change the chain only while no lookup is in
// progress.
constexpr Kind nestedKinds[] = {Kind::StoreValue,       Kind::SetInMemoryValue, Kind::RemoveValue,
                                Kind::GetOriginalValue, Kind::AddStore,         Kind::RemoveStore};
constexpr std::size_t nestedKindsThatKeepTheChain = 4;

bool walksTheChain(Kind kind) {
    return kind == Kind::RemoveNonLocalStores || kind == Kind::StoreValues || kind == Kind::ResetConfigData;
}

StoreShape readShape(ByteSource& bytes) {
    StoreShape shape;
    shape.name = bytes.pick(vocabulary::storeNames);
    shape.priority = bytes.pick(vocabulary::priorities);
    const auto flags = bytes.below(64);
    // Mostly the product's own volatile store.
    const bool memory = shape.name == "InMemoryConfigStore" ? flags < 48 : flags < 4;
    if (memory) {
        shape.kind = StoreShape::Kind::Memory;
        shape.readOnly = false;
    } else {
        shape.readOnly = shape.name != "LocalFileConfigStore" && flags % 2 == 0;
        shape.local = flags % 4 < 2;
        shape.caching = flags % 8 < 4;
        shape.refusesWrites = !shape.readOnly && flags % 16 == 15;
    }
    shape.pairs = vocabulary::choosePairs(bytes, 4);
    return shape;
}

ChainStep readStep(ByteSource& bytes, Kind kind) {
    ChainStep step;
    step.kind = kind;
    switch (kind) {
    case Kind::UpdateStore:
        step.pairs = vocabulary::choosePairs(bytes, 2);
        [[fallthrough]];
    case Kind::AddStore:
        step.store = readShape(bytes);
        break;
    case Kind::RemoveStore:
    case Kind::FindStore:
    case Kind::ResetStore:
        step.name = bytes.pick(vocabulary::storeNames);
        break;
    case Kind::RegisterObserver:
    case Kind::UnregisterObserver:
        step.number = bytes.below(4);
        break;
    case Kind::RenewObserver:
        step.number = 1 + bytes.below(3);
        break;
    case Kind::GetValue:
        step.flag = bytes.flip();
        step.name = bytes.oneIn(3) ? bytes.pick(vocabulary::storeNames) : "";
        step.key = bytes.pick(vocabulary::keys);
        break;
    case Kind::GetValueOfStore:
        step.name = bytes.pick(vocabulary::storeNames);
        step.key = bytes.pick(vocabulary::keys);
        break;
    case Kind::GetOriginalValue:
    case Kind::SetKeySensitive:
    case Kind::RemoveValue:
        step.key = bytes.pick(vocabulary::keys);
        break;
    case Kind::StoreValue:
    case Kind::SetInMemoryValue:
        step.key = bytes.pick(vocabulary::keys);
        step.value = bytes.pick(vocabulary::values);
        break;
    case Kind::StoreValues:
        step.pairs = vocabulary::choosePairs(bytes, 4);
        break;
    case Kind::SetUrlProvisioningData:
        step.value = bytes.pick(vocabulary::urls);
        break;
    case Kind::RemoveCachedFiles:
        step.name = bytes.pick(vocabulary::removedFiles);
        break;
    case Kind::PlaceCachedFile:
        step.name = bytes.pick(vocabulary::placedFiles);
        break;
    case Kind::SetFipsMode:
        step.flag = bytes.flip();
        break;
    case Kind::RemoveNonLocalStores:
    case Kind::DestroyStores:
    case Kind::ResetConfigData:
    case Kind::RemoveAllCachedStores:
        break;
    }
    return step;
}

std::string quote(std::wstring_view text) {
    return '"' + narrow(text) + '"';
}

std::string quote(const std::string& text) {
    return '"' + text + '"';
}

std::string describeCall(const ChainStep& step) {
    switch (step.kind) {
    case Kind::AddStore:
        return "addStore " + describe(step.store);
    case Kind::UpdateStore:
        return "updateExistingConfigStore " + describe(step.store) + ", old keys of " + describe(step.pairs);
    case Kind::RemoveStore:
        return "removeStoreWithSameName " + quote(step.name);
    case Kind::RemoveNonLocalStores:
        return "removeNonLocalStores";
    case Kind::DestroyStores:
        return "destroyStores";
    case Kind::FindStore:
        return "hasStoreWithName, getStoreByName " + quote(step.name);
    case Kind::RegisterObserver:
        return "registerConfigStoreAddedObserver " + std::to_string(step.number);
    case Kind::UnregisterObserver:
        return "unregisterConfigStoreAddedObserver " + std::to_string(step.number);
    case Kind::RenewObserver:
        return "renew observer " + std::to_string(step.number);
    case Kind::GetValue:
        return "getValue " + quote(step.key) + (step.flag ? " skipLocal" : "") + " filter " + quote(step.name);
    case Kind::GetValueOfStore:
        return "getValue of " + quote(step.name) + " " + quote(step.key);
    case Kind::GetOriginalValue:
        return "getOriginalValue " + quote(step.key);
    case Kind::SetKeySensitive:
        return "setKeySensitive " + quote(step.key);
    case Kind::StoreValue:
        return "storeValue " + quote(step.key) + " = " + quote(step.value);
    case Kind::StoreValues:
        return "storeValue " + describe(step.pairs);
    case Kind::SetInMemoryValue:
        return "setInMemoryValue " + quote(step.key) + " = " + quote(step.value);
    case Kind::RemoveValue:
        return "removeValue " + quote(step.key);
    case Kind::SetUrlProvisioningData:
        return "setUrlProvisioningData " + quote(step.value);
    case Kind::ResetConfigData:
        return "resetConfigData";
    case Kind::ResetStore:
        return "resetConfigData " + quote(step.name);
    case Kind::RemoveAllCachedStores:
        return "removeAllCachedStores";
    case Kind::RemoveCachedFiles:
        return "removeCachedFiles " + quote(step.name);
    case Kind::SetFipsMode:
        return step.flag ? "FIPS mode on" : "FIPS mode off";
    case Kind::PlaceCachedFile:
        return "a file in Cache: " + quote(step.name);
    }
    return "";
}

} // namespace

std::vector<ChainStep> readChainSteps(std::span<const std::uint8_t> bytes) {
    ByteSource source(bytes);
    std::vector<ChainStep> steps;
    while (!source.isEmpty() && steps.size() < mostSteps) {
        auto step = readStep(source, source.pick(kinds));
        if (source.oneIn(4)) {
            step.nestedAt = 1 + source.below(4);
            const auto choices = walksTheChain(step.kind) ? nestedKindsThatKeepTheChain : std::size(nestedKinds);
            step.nested.push_back(readStep(source, nestedKinds[source.below(choices)]));
        }
        steps.push_back(std::move(step));
    }
    return steps;
}

std::string describe(const ChainStep& step) {
    auto text = describeCall(step);
    for (const auto& nested : step.nested) {
        text += "; at announcement " + std::to_string(step.nestedAt) + ": " + describeCall(nested);
    }
    return text;
}

std::string describe(const Pairs& pairs) {
    std::string text = "{";
    for (const auto& [key, value] : pairs) {
        text += (text.size() > 1 ? ", " : "") + narrow(key) + "=" + narrow(value);
    }
    return text + "}";
}

std::string describe(const StoreShape& shape) {
    return quote(shape.name) + " " + std::to_string(shape.priority) +
           (shape.kind == StoreShape::Kind::Memory ? " in memory" : "") + (shape.readOnly ? " read-only" : "") +
           (shape.local ? " local" : "") + (shape.caching ? " caching" : "") +
           (shape.refusesWrites ? " refusing" : "") + " " + describe(shape.pairs);
}

} // namespace config_model
