#include "ChangeRunner.h"

#include "StorableText.h"
#include "ValueLoad.h"

#include <kyr/FileUtils.h>

#include <ConfigCatalogue.h>
#include <StoreRemoval.h>

#include <algorithm>
#include <map>
#include <utility>

namespace inspection {

using KyrCoreUtils::caseInsensitiveStringEquals;
using KyrCoreUtils::FileUtils;
using ZelUnified::StoreRemoval;
using Code = RequestError::Code;
namespace ConfigKeys = ZelUnified::ConfigKeys;

namespace {

/// Refuses keys and values that cannot be stored or that the kind of the key excludes, unless the request forces them.
void requireAcceptable(const InspectionRequest& request) {
    if (!request.force) {
        requireStorableKey(request.key);
        requireStorableValue(request.value);
        requirePermitted(request.key, request.value);
    }
}

/// Deletes the cached copies of a removed store. Background dispatcher's thread, where the queued writes have been
/// carried out.
void deleteCopies(const StoreRemoval& removal) {
    for (const auto& path : removal.getCopyPaths()) {
        FileUtils::removeFile(path);
        if (FileUtils::fileExists(path)) {
            throw RequestError(Code::Environment,
                               "the store is removed for this run only, because its copy cannot be deleted: " + path);
        }
    }
}

} // namespace

ChangeRunner::ChangeRunner(const std::shared_ptr<ZelUnified::UnifiedFactory>& factory,
                           std::shared_ptr<const ConfigInspector> configInspector)
    : inspector(std::move(configInspector)), tasks(factory) {}

ChangeRunner::Step ChangeRunner::findStep(const std::string& verb) {
    static const std::map<std::string, Step> steps{{"set", &ChangeRunner::set},
                                                   {"memory", &ChangeRunner::setInMemory},
                                                   {"mdm", &ChangeRunner::setManaged},
                                                   {"reset", &ChangeRunner::reset},
                                                   {"provision", &ChangeRunner::provision},
                                                   {"reset-provisioning", &ChangeRunner::resetProvisioning},
                                                   {"remove-store", &ChangeRunner::removeStore},
                                                   {"refresh", &ChangeRunner::refresh},
                                                   {"load", &ChangeRunner::load}};
    const auto found = steps.find(verb);
    return found == steps.end() ? nullptr : found->second;
}

bool ChangeRunner::run(const JobPointer& job) {
    const auto step = findStep(job->request.verb);
    if (step == nullptr) {
        return false;
    }
    (this->*step)(job);
    return true;
}

void ChangeRunner::set(const JobPointer& job) {
    requireAcceptable(job->request);
    onServices(job, [this, job] {
        const auto& [key, value] = std::tie(job->request.key, job->request.value);
        auto file = expectUsersFile(spell(key) + " is set for this run only, because it is not on the disk");
        file.mustBeNew = inspector->readUsersValue(key) != value;
        if (key.empty() || !inspector->getFeatureSet().setConfig(key, value)) {
            throw RequestError(Code::Refused, "no store accepts a value for the key '" + spell(key) + "'");
        }
        confirmWritten(job, {file}, [this, job] {
            return spell(job->request.key) + " set; " + inspector->describeOutcome(job->request.key);
        });
    });
}

void ChangeRunner::setInMemory(const JobPointer& job) {
    requireAcceptable(job->request);
    onServices(job, [this, job] {
        const auto& key = job->request.key;
        if (key.empty() || !inspector->getFeatureSet().setInMemoryConfig(key, job->request.value)) {
            throw RequestError(Code::Refused, "no volatile store accepts a value for the key '" + spell(key) + "'");
        }
        job->reportDone(spell(key) + " set for this run; " + inspector->describeOutcome(key));
    });
}

void ChangeRunner::setManaged(const JobPointer& job) {
    onServices(job, [this, job] {
        const std::string storeName(ConfigKeys::mdmConfigStore);
        for (const auto& key : job->request.keys) {
            inspector->getFeatureSet().setKeySensitive(key);
        }
        inspector->getService().setMdmConfig(job->request.document);
        const auto store = inspector->getFeatureSet().getConfigStoreByName(storeName);
        job->reportDone(storeName + " holds " + std::to_string(store ? store->getKeys().size() : 0) +
                        " keys for this run");
    });
}

void ChangeRunner::reset(const JobPointer& job) {
    onServices(job, [this, job] {
        const auto& key = job->request.key;
        if (!inspector->userHolds(key)) {
            throw RequestError(Code::Refused, "the user has no value for the key '" + spell(key) + "'");
        }
        removeFromUserStore(job, ConfigKeys::getKeyNames(key).getAll(), [this, job] {
            const auto name = spell(job->request.key);
            const auto file = expectUsersFile(name + " is reset for this run only");
            inspector->getService().resetConfig(job->request.key);
            confirmWritten(job, {file}, [this, job, name] {
                return name + " reset; " + inspector->describeOutcome(job->request.key);
            });
        });
    });
}

void ChangeRunner::provision(const JobPointer& job) {
    onServices(job, [this, job] {
        const auto policy = inspector->read(std::wstring(ConfigKeys::allowUrlProvisioning), false);
        const bool allowed = !policy || !caseInsensitiveStringEquals(policy->value, L"false");
        const auto file = expectUsersFile("the settings of the URL apply to this run only");
        if (!inspector->getService().setUrlProvisioningData(job->request.url)) {
            throw RequestError(Code::Refused,
                               allowed ? "the URL contains no setting that may be provisioned"
                                       : "provisioning by URL is not allowed: AllowUrlProvisioning is false");
        }
        auto copy = file;
        copy.file = "cached" + std::string(ConfigKeys::urlProvisioningConfigStore) + ".dat";
        confirmWritten(job, {file, copy},
                       [] { return "the settings of the URL are stored; run reset-provisioning before another URL"; });
    });
}

void ChangeRunner::resetProvisioning(const JobPointer& job) {
    onServices(job, [this, job] {
        removeFromUserStore(job, {std::wstring(ConfigKeys::allowUrlProvisioning)}, [this, job] {
            const auto file = expectUsersFile("another provisioning URL is allowed for this run only");
            if (!inspector->getService().resetAllowUriProvisioningData()) {
                throw RequestError(Code::Refused,
                                   "there is nothing to reset: the user's settings do not forbid provisioning");
            }
            confirmWritten(job, {file}, [] { return "another provisioning URL is allowed"; });
        });
    });
}

void ChangeRunner::removeStore(const JobPointer& job) {
    onServices(job, [this, job] {
        auto& featureSet = inspector->getFeatureSet();
        auto removal = StoreRemoval::find(featureSet, FileUtils::getConfigDirectory(), job->request.store);
        if (!removal) {
            throw RequestError(Code::Refused, "there is no store '" + job->request.store + "'");
        }
        const ExpectedWrite file{"the store is removed for this run only", std::string(ConfigKeys::localConfigFile),
                                 std::chrono::system_clock::now()};
        removal->removeFromChain(featureSet, inspector->getService());
        tasks.runInBackground(job->nameTask(), [self = shared_from_this(), job, removed = *removal, file] {
            job->guard([&] {
                deleteCopies(removed);
                std::vector<ExpectedWrite> expected;
                if (removed.hasChangedRecord()) {
                    expected.push_back(file);
                }
                self->confirmWritten(job, std::move(expected), [outcome = removed.describe()] { return outcome; });
            });
        });
    });
}

void ChangeRunner::refresh(const JobPointer& job) {
    // A store that reads its file again must not overtake a queued write to it.
    tasks.runInBackground(job->nameTask(), [self = shared_from_this(), job] {
        self->onServices(job, [self, job] {
            self->inspector->getFeatureSet().refreshConfigFeatureSet();
            job->reportDone("the stores that are not local have read their sources again");
        });
    });
}

/// Sets all values in one task, because other tasks must not find a part of them.
void ChangeRunner::load(const JobPointer& job) {
    const auto values = std::make_shared<ValueLoad>(job->request);
    runStep(tasks, job, [self = shared_from_this(), job, values] {
        values->count(*self->inspector);
        if (values->isDryRun()) {
            job->reply(values->describe());
            return;
        }
        self->requireChangesAllowed();
        auto file = self->expectUsersFile("the values are set for this run only, because they are not on the disk");
        file.mustBeNew = !values->changesNothing();
        values->set(*self->inspector);
        self->tasks.runInBackground(job->nameTask(), [job, values, file] {
            job->guard([&] {
                if (!values->isEmpty()) {
                    requireWritten(file);
                }
                job->reply(values->describe());
            });
        });
    });
}

void ChangeRunner::onServices(const JobPointer& job, std::function<void()> change) {
    runStep(tasks, job, [self = shared_from_this(), work = std::move(change)] {
        self->requireChangesAllowed();
        work();
    });
}

void ChangeRunner::requireChangesAllowed() const {
    if (!changesAllowed) {
        throw RequestError(Code::Refused, "the client does not allow other processes to change its configuration");
    }
    if (!inspector->administratorAllowsChanges()) {
        throw RequestError(Code::Refused,
                           "the administrator does not allow other processes to change the configuration of a running "
                           "client: InspectionAllowsChanges is false");
    }
}

/// The service treats an empty table as unchanged if it has written nothing in this run, and would leave the last value
/// in the file. After one write it detects the change.
void ChangeRunner::removeFromUserStore(const JobPointer& job, const std::vector<std::wstring>& names,
                                       std::function<void()> work) {
    const auto store = inspector->getFeatureSet().getConfigStoreByName(std::string(ConfigKeys::localFileConfigStore));
    const auto isNamed = [&](const std::wstring& held) {
        return std::ranges::any_of(names,
                                   [&](const std::wstring& name) { return caseInsensitiveStringEquals(held, name); });
    };
    if (!store || !std::ranges::all_of(store->getKeys(), isNamed)) {
        work();
        return;
    }
    tasks.runInBackground("inspection: write user's file",
                          [self = shared_from_this(), job, store, work = std::move(work)] {
                              store->persistValues();
                              self->onServices(job, work);
                          });
}

void ChangeRunner::confirmWritten(const JobPointer& job, std::vector<ExpectedWrite> expected,
                                  std::function<std::string()> describe) {
    tasks.runInBackground(job->nameTask(), [self = shared_from_this(), job, expected = std::move(expected),
                                            describe = std::move(describe)] {
        job->guard([&] {
            std::ranges::for_each(expected, requireWritten);
            runStep(self->tasks, job, [self, job, describe] { job->reportDone(describe()); });
        });
    });
}

ExpectedWrite ChangeRunner::expectUsersFile(const std::string& what) const {
    ExpectedWrite file{what, std::string(ConfigKeys::localConfigFile), std::chrono::system_clock::now()};
    const auto mode = inspector->read(std::wstring(ConfigKeys::lumoraSdkMode), false);
    if (mode && KyrCoreUtils::toBool(mode->value)) {
        file.obstacle = "in SDK mode no settings of the user are stored (Lumora_SDK_Mode is true)";
    }
    return file;
}

} // namespace inspection
