#include "Call.h"

#include "ByteSource.h"
#include "ChainStep.h"

#include <iterator>

namespace config_model {

namespace {

using Kind = Call::Kind;

constexpr std::size_t fewestCalls = 6;
constexpr std::size_t mostCalls = 16;
constexpr std::size_t bytesOfOneScript = 200;

// A kind that is listed more often is chosen more often.
constexpr Kind kindsOfAnyThread[] = {
    Kind::AddStore,
    Kind::AddStore,
    Kind::AddStore,
    Kind::RemoveStore,
    Kind::RemoveStore,
    Kind::IsStorePresent,
    Kind::GetConfig,
    Kind::GetConfig,
    Kind::GetConfig,
    Kind::SetConfig,
    Kind::SetConfig,
    Kind::SetConfig,
    Kind::SetConfigMap,
    Kind::SetInMemoryConfig,
    Kind::SetInMemoryConfig,
    Kind::ResetConfig,
    Kind::ResetConfig,
    Kind::SetMdmConfig,
    Kind::Provision,
    Kind::ResetProvisioning,
    Kind::Report,
    Kind::GetValueOfStore,
    Kind::SetKeySensitive,
    Kind::IsKeySensitive,
    Kind::RemoveAllCachedStores,
};
constexpr Kind kindsOfLifecycle[] = {Kind::Start,        Kind::Start,     Kind::Stop,
                                     Kind::Refresh,      Kind::Refresh,   Kind::ResetAllData,
                                     Kind::ResetAllData, Kind::PowerDown, Kind::IsStarted};
constexpr Kind kindsOfServicesThread[] = {Kind::GetRecord, Kind::GetRecord, Kind::IsRecordSensitive};

const std::wstring allKeys[] = {L"Zed",         L"_mark",      L"TFTPPrimaryServer",
                                L"TftpServer1", L"CtiServer1", L"Telephony_Enabled"};
// A removal writes the user's file once for each name of a key, so the user's file holds one name of each key only:
// otherwise the file could be read between the two.
const std::wstring allKeysOfUser[] = {
    L"Zed", L"ZED", L"_mark", L"TFTPPrimaryServer", L"CtiServer1", L"Customize_Phone_Server"};
const std::wstring switches[] = {L"AllowUrlProvisioning", L"Customize_Phone_Server"};
const std::wstring values[] = {L"one", L"two", L"", L"ONE"};
const std::string stores[] = {"Alpha", "Alpha", "TftpStore", "Beta"};
const std::string removedStores[] = {"Alpha", "TftpStore", "Beta", "UrlProvisioningConfigStore", "MdmConfigStore"};
const std::wstring urls[] = {L"app://open?ServicesDomain=one", L"app://open?Telephony_Enabled=true&ip_mode=two",
                             L"app://open"};
// In no store: a report does not read the sensitive keys under the lock of the chain.
const std::wstring secrets[] = {L"first secret", L"second secret"};

/// What the calls of one script are chosen from. A script with few kinds and keys makes calls that meet more often.
struct Choices {
    std::vector<Kind> kinds{std::begin(kindsOfAnyThread), std::end(kindsOfAnyThread)};
    std::vector<std::wstring> keys{std::begin(allKeys), std::end(allKeys)};
    std::vector<std::wstring> keysOfUser{std::begin(allKeysOfUser), std::end(allKeysOfUser)};
};

Choices readChoices(ByteSource& bytes) {
    Choices choices;
    if (bytes.flip()) {
        choices.kinds.clear();
        for (std::size_t i = 0; i < 4; ++i) {
            choices.kinds.push_back(bytes.pick(kindsOfAnyThread));
        }
        choices.keysOfUser = {bytes.pick(allKeysOfUser)};
        choices.keys = choices.keysOfUser;
    }
    return choices;
}

Pairs readPairs(ByteSource& bytes, const std::vector<std::wstring>& keys, std::size_t most) {
    Pairs pairs;
    for (auto count = bytes.below(most) + 1; count > 0; --count) {
        const auto& key = bytes.pick(keys);
        pairs.emplace_back(key, bytes.pick(values));
    }
    if (bytes.oneIn(6)) {
        pairs.emplace_back(bytes.pick(switches), L"false");
    }
    return pairs;
}

Pairs readPairsOfUser(ByteSource& bytes, const Choices& choices) {
    Pairs pairs;
    for (auto count = bytes.below(2) + 1; count > 0; --count) {
        const auto& key = bytes.pick(choices.keysOfUser);
        pairs.emplace_back(key, bytes.pick(values));
    }
    return pairs;
}

StoreShape readShape(ByteSource& bytes, const Choices& choices) {
    StoreShape shape;
    shape.name = bytes.pick(stores);
    shape.priority = bytes.flip() ? 10 : 40;
    shape.local = bytes.flip();
    shape.caching = bytes.flip();
    shape.pairs = readPairs(bytes, choices.keys, 3);
    return shape;
}

Call readCall(ByteSource& bytes, const Choices& choices, Kind kind) {
    Call call;
    call.kind = kind;
    switch (kind) {
    case Kind::AddStore:
        call.store = readShape(bytes, choices);
        break;
    case Kind::RemoveStore:
    case Kind::IsStorePresent:
        call.name = bytes.pick(removedStores);
        break;
    case Kind::GetValueOfStore:
        call.name = bytes.pick(removedStores);
        [[fallthrough]];
    case Kind::GetConfig:
        call.skipLocal = bytes.flip();
        [[fallthrough]];
    case Kind::ResetConfig:
    case Kind::GetRecord:
        call.key = bytes.pick(choices.keys);
        break;
    case Kind::SetMdmConfig:
        call.pairs = readPairs(bytes, choices.keys, 2);
        break;
    case Kind::SetConfigMap:
        call.pairs = readPairsOfUser(bytes, choices);
        break;
    case Kind::SetConfig:
        call.key = bytes.pick(choices.keysOfUser);
        call.value = bytes.oneIn(4) ? L"false" : bytes.pick(values);
        break;
    case Kind::SetInMemoryConfig:
        call.key = bytes.pick(choices.keys);
        call.value = bytes.pick(values);
        break;
    case Kind::Provision:
        call.value = bytes.pick(urls);
        break;
    case Kind::SetKeySensitive:
    case Kind::IsKeySensitive:
    case Kind::IsRecordSensitive:
        call.key = bytes.pick(secrets);
        break;
    case Kind::RegisterObserver:
    case Kind::UnregisterObserver:
        call.observer = bytes.below(2) + 1;
        break;
    default:
        break;
    }
    return call;
}

/// A thread that holds the lifecycle lock and waits for the services thread would deadlock with a services thread that
/// waits for that lock. So either the services thread or the other threads make the lifecycle calls.
Kind readKind(ByteSource& bytes, const Choices& choices, bool isServicesThread, bool changesLifecycle) {
    if (changesLifecycle && bytes.oneIn(4)) {
        return bytes.pick(kindsOfLifecycle);
    }
    if (isServicesThread && bytes.oneIn(3)) {
        return bytes.pick(kindsOfServicesThread);
    }
    return bytes.pick(choices.kinds);
}

std::string pairOf(const Call& call) {
    return narrow(call.key) + " = \"" + narrow(call.value) + '"';
}

} // namespace

Script makeScript(std::uint32_t seed) {
    const auto source = makeBytes(seed, bytesOfOneScript);
    ByteSource bytes(source);
    const auto choices = readChoices(bytes);
    Script script;
    if (bytes.oneIn(4)) {
        script.policy.emplace_back(bytes.pick(choices.keys), L"policy");
    }
    for (const auto kind : {Kind::RegisterObserver, Kind::RegisterObserver, Kind::UnregisterObserver}) {
        if (bytes.flip()) {
            script.before.push_back(readCall(bytes, choices, kind));
        }
    }
    for (auto count = bytes.below(4); count > 0; --count) {
        script.before.push_back(readCall(bytes, choices, bytes.pick(kindsOfAnyThread)));
    }
    script.threads.resize(2 + bytes.below(3));
    const bool servicesThreadChangesLifecycle = bytes.flip();
    const auto count = fewestCalls + bytes.below(mostCalls - fewestCalls + 1);
    for (std::size_t i = 0; i < count; ++i) {
        const auto thread = i < script.threads.size() ? i : bytes.below(script.threads.size());
        const auto kind = readKind(bytes, choices, thread == 0, (thread == 0) == servicesThreadChangesLifecycle);
        script.threads[thread].push_back(readCall(bytes, choices, kind));
    }
    return script;
}

std::string describe(const Call& call) {
    switch (call.kind) {
    case Kind::AddStore:
        return "addConfigStore " + describe(call.store);
    case Kind::RemoveStore:
        return "removeConfigStore " + call.name;
    case Kind::IsStorePresent:
        return "isConfigStorePresent " + call.name;
    case Kind::RemoveAllCachedStores:
        return "removeAllCachedConfigStores";
    case Kind::SetMdmConfig:
        return "setMdmConfig " + describe(call.pairs);
    case Kind::GetConfig:
        return "getConfig " + narrow(call.key) + (call.skipLocal ? " skipLocal" : "");
    case Kind::GetValueOfStore:
        return "getValueFromConfigStore " + call.name + " " + narrow(call.key);
    case Kind::SetConfig:
        return "setConfig " + pairOf(call);
    case Kind::SetConfigMap:
        return "setConfig " + describe(call.pairs);
    case Kind::SetInMemoryConfig:
        return "setInMemoryConfig " + pairOf(call);
    case Kind::ResetConfig:
        return "resetConfig " + narrow(call.key);
    case Kind::Provision:
        return "setUrlProvisioningData " + narrow(call.value);
    case Kind::ResetProvisioning:
        return "resetAllowUriProvisioningData";
    case Kind::SetKeySensitive:
        return "setKeySensitive " + narrow(call.key);
    case Kind::IsKeySensitive:
        return "isKeySensitive " + narrow(call.key);
    case Kind::RegisterObserver:
        return "registerConfigStoreAddedObserver " + std::to_string(call.observer);
    case Kind::UnregisterObserver:
        return "unregisterConfigStoreAddedObserver " + std::to_string(call.observer);
    case Kind::Report:
        return "getAllConfigForPRT";
    case Kind::Start:
        return "start";
    case Kind::Stop:
        return "stop";
    case Kind::Refresh:
        return "refresh";
    case Kind::PowerDown:
        return "power down";
    case Kind::ResetAllData:
        return "reset all data";
    case Kind::IsStarted:
        return "isFeatureSetStarted";
    case Kind::GetRecord:
        return "record of " + narrow(call.key);
    case Kind::IsRecordSensitive:
        return "isKeySensitive of the service " + narrow(call.key);
    case Kind::RunPosted:
        return "posted task " + std::to_string(call.position);
    case Kind::RunBackground:
        return "background task";
    }
    return "";
}

} // namespace config_model
