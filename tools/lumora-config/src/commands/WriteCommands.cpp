#include "CommandTable.h"
#include "KeyCommands.h"
#include "StorableCheck.h"
#include "stores/KnownKeys.h"
#include "stores/XmlSettings.h"

#include <kyr/StringUtils.h>

#include <ConfigCatalogue.h>

#include <algorithm>

namespace lumora_config {

namespace {

using KyrCoreUtils::toString;
namespace ConfigKeys = ZelUnified::ConfigKeys;

/// Runs a write on the services dispatcher's thread or, for `--worker`, on the calling thread.
void runWrite(Session& session, const Command& command, const std::function<void()>& write) {
    if (command.fromWorker) {
        write();
        return;
    }
    session.getHost().onServices("lumora-config: " + command.name, write);
}

/// Returns the effective value and its store: a store of higher priority may hide the written value.
std::string describeOutcome(Session& session, const std::wstring& key) {
    std::optional<Reading> reading;
    session.getHost().onServices("lumora-config: outcome", [&] { reading = session.getChain().read(key); });
    if (!reading) {
        return "no store contains the key now";
    }
    return "in force: \"" + toString(session.getMask().show(key, reading->value)) + "\" from " +
           toString(reading->storeName);
}

void set(Session& session, const Command& given) {
    auto command = given;
    if (given.value == "-") {
        command.value = session.getInput().readValue();
    }
    requireStorable(command.key, command.value, command.forced);
    suggestKeys(session, command.key);
    const auto key = toWide(command.key);
    bool stored = false;
    runWrite(session, command,
             [&] { stored = session.getHost().getFeatureSet()->setConfig(key, toWide(command.value)); });
    if (!stored) {
        throw Failure(ExitCode::NotFound, "no store accepts a value for the key '" + spell(command.key) + "'");
    }
    if (command.fromWorker) {
        session.expectStored(key, toWide(command.value));
        reportDone(session, command, spell(command.key) + " is being set; " + describeOutcome(session, key));
        return;
    }
    session.forgetExpected({key});
    session.getDiskCheck().requireStored(key, toWide(command.value));
    reportDone(session, command, spell(command.key) + " set; " + describeOutcome(session, key));
}

void memory(Session& session, const Command& command) {
    requireStorable(command.key, command.value, command.forced);
    suggestKeys(session, command.key);
    const auto key = toWide(command.key);
    bool stored = false;
    runWrite(session, command,
             [&] { stored = session.getHost().getFeatureSet()->setInMemoryConfig(key, toWide(command.value)); });
    if (!stored) {
        throw Failure(ExitCode::NotFound, "there is no volatile store");
    }
    session.recordInMemory(key, toWide(command.value));
    reportDone(session, command, spell(command.key) + " set for this run; " + describeOutcome(session, key));
}

bool userHolds(Session& session, const std::wstring& key) {
    const auto names = ConfigKeys::getKeyNames(key).getAll();
    return std::ranges::any_of(session.getChain().getStores(), [&](const auto& store) {
        std::wstring value;
        return !store->isReadOnly() &&
               std::ranges::any_of(names, [&](const std::wstring& name) { return store->getValue(name, value); });
    });
}

/// The service treats an empty table as unchanged if it has written nothing in this run, and would leave the last value
/// in the file. After one write it detects the change.
void prepareLastRemoval(Session& session, const std::vector<std::wstring>& names) {
    const auto& host = session.getHost();
    std::shared_ptr<ZelUnified::ConfigStore> store;
    host.onServices("lumora-config: user's store", [&] {
        store = host.getFeatureSet()->getConfigStoreByName(std::string(ConfigKeys::localFileConfigStore));
    });
    const auto isNamed = [&](const std::wstring& held) {
        return std::ranges::any_of(
            names, [&](const std::wstring& name) { return KyrCoreUtils::caseInsensitiveStringEquals(held, name); });
    };
    if (store && std::ranges::all_of(store->getKeys(), isNamed)) {
        host.onBackground("lumora-config: write user's file", [store] { store->persistValues(); });
        host.settle();
    }
}

void reset(Session& session, const Command& command) {
    const auto key = toWide(command.key);
    const auto names = ConfigKeys::getKeyNames(key).getAll();
    bool held = false;
    prepareLastRemoval(session, names);
    session.getHost().onServices("lumora-config: reset", [&] {
        held = userHolds(session, key);
        session.getHost().getService()->resetConfig(key);
    });
    if (!held) {
        throw Failure(ExitCode::NotFound, "the user has no value for the key '" + spell(command.key) + "'");
    }
    session.forgetExpected(names);
    session.getDiskCheck().requireRemoved(command.key, names);
    reportDone(session, command, spell(command.key) + " reset; " + describeOutcome(session, key));
}

void requireProvisioned(Session& session) {
    std::shared_ptr<ZelUnified::ConfigStore> store;
    session.getHost().onServices("lumora-config: provisioned", [&] {
        store = session.getHost().getFeatureSet()->getConfigStoreByName(
            std::string(ConfigKeys::urlProvisioningConfigStore));
    });
    if (store) {
        session.getDiskCheck().requireProvisioned(*store);
    }
    session.getDiskCheck().requireStored(std::wstring(ConfigKeys::allowUrlProvisioning), L"False");
}

void provision(Session& session, const Command& command) {
    bool allowed = true;
    bool accepted = false;
    session.getHost().onServices("lumora-config: provision", [&] {
        const auto policy = session.getChain().read(std::wstring(ConfigKeys::allowUrlProvisioning));
        allowed = !policy || !KyrCoreUtils::caseInsensitiveStringEquals(policy->value, L"false");
        accepted = session.getHost().getService()->setUrlProvisioningData(toWide(command.url));
    });
    if (!accepted) {
        throw Failure(ExitCode::NotFound, allowed
                                              ? "the URL contains no setting that may be provisioned"
                                              : "provisioning by URL is not allowed: AllowUrlProvisioning is false");
    }
    session.recordArrival(std::string(ConfigKeys::urlProvisioningConfigStore), StoreArrivals::Kind::ProvisioningUrl);
    session.forgetExpected({std::wstring(ConfigKeys::allowUrlProvisioning)});
    requireProvisioned(session);
    reportDone(session, command, "the settings of the URL are stored; run reset-provisioning before another URL");
}

void resetProvisioning(Session& session, const Command& command) {
    const std::wstring key(ConfigKeys::allowUrlProvisioning);
    bool done = false;
    prepareLastRemoval(session, {key});
    session.getHost().onServices("lumora-config: reset-provisioning",
                                 [&] { done = session.getHost().getService()->resetAllowUriProvisioningData(); });
    if (!done) {
        throw Failure(ExitCode::NotFound, "there is nothing to reset: the user's settings do not forbid provisioning");
    }
    session.forgetExpected({key});
    session.getDiskCheck().requireRemoved(toString(key), {key});
    reportDone(session, command, "another provisioning URL is allowed");
}

void mdm(Session& session, const Command& command) {
    const auto document = readWholeFile(command.file);
    // A document that is not XML would empty the store without an error.
    const auto settings = parseXmlSettings(document, command.file);
    const std::string storeName(ConfigKeys::mdmConfigStore);
    std::size_t keyCount = 0;
    session.getHost().onServices("lumora-config: mdm", [&] {
        // The service does not read the marks of this document.
        for (const auto& setting : settings) {
            if (setting.sensitive) {
                session.getHost().getService()->setKeySensitive(setting.key);
            }
        }
        session.getHost().getService()->setMdmConfig(document);
        if (const auto store = session.getHost().getFeatureSet()->getConfigStoreByName(storeName)) {
            keyCount = store->getKeys().size();
        }
    });
    session.recordArrival(storeName, StoreArrivals::Kind::DeviceManagement, command.file);
    reportDone(session, command, storeName + " holds " + std::to_string(keyCount) + " keys for this run");
}

} // namespace

CommandTable getWriteCommands() {
    return {{"set", set},
            {"memory", memory},
            {"reset", reset},
            {"provision", provision},
            {"reset-provisioning", resetProvisioning},
            {"mdm", mdm}};
}

} // namespace lumora_config
