#include "RequestRunner.h"

#include "SettingsReport.h"
#include "StorableText.h"
#include "StorageReport.h"
#include "ValueLoad.h"

#include <kyr/FileUtils.h>
#include <kyr/StringUtils.h>
#include <zel/LogLineCatcher.h>
#include <zel/ZelLog.h>

#include <ConfigCatalogue.h>

#include <algorithm>
#include <exception>
#include <map>
#include <utility>

namespace inspection {

using KyrCoreUtils::caseInsensitiveStringEquals;
using KyrCoreUtils::matchesWildcards;
using KyrCoreUtils::toString;
using zel::logging::LogLineCatcher;
using Code = RequestError::Code;
namespace ConfigKeys = ZelUnified::ConfigKeys;

namespace {

ZelLogger& requestLogger = ZelLogger_getLogger("Inspection-RequestRunner");

/// Few enough that a slice takes a fraction of a millisecond.
constexpr std::size_t recordsPerSlice = 64;

std::string nameTask(const std::string& verb) {
    return "inspection: " + verb;
}

bool beginsWith(std::wstring_view text, std::wstring_view prefix) {
    return text.size() >= prefix.size() && caseInsensitiveStringEquals(text.substr(0, prefix.size()), prefix);
}

bool isAsked(const InspectionRequest& request, const std::wstring& key) {
    return beginsWith(key, request.prefix) && (request.pattern.empty() || matchesWildcards(key, request.pattern));
}

Json makeDone(const std::string& verb, const std::string& message) {
    return {{"type", "done"}, {"command", verb}, {"message", message}};
}

std::string spell(const std::wstring& key) {
    return toString(ConfigKeys::spellKey(key));
}

/// Refuses a value that the kind of the key excludes. Never quotes the value, which may be a secret.
void requirePermitted(const InspectionRequest& request) {
    const auto* const row = ConfigKeys::findKey(request.key);
    if (row != nullptr && !ConfigKeys::permits(*row, request.value)) {
        throw RequestError(Code::Refused, "the value of the key '" + spell(request.key) + "' must be " +
                                              ConfigKeys::describePermittedValues(*row) + "; --force sets it anyway");
    }
}

} // namespace

struct RequestRunner::Job {
    Job(InspectionRequest asked, Answer reply) : request(std::move(asked)), answer(std::move(reply)) {}

    void reply(const Json& result) const { answer(makeReply(request.id, result)); }
    void reportDone(const std::string& message) const { reply(makeDone(request.verb, message)); }

    /// Runs a step. Returns false if it failed; the failure is answered then.
    bool guard(const std::function<void()>& step) const {
        try {
            step();
            return true;
        } catch (const RequestError& error) {
            answer(makeFailure(request, error.getCode(), error.what()));
        } catch (const std::exception& error) {
            answer(makeFailure(request, Code::Environment, error.what()));
        }
        return false;
    }

    const InspectionRequest request;
    const Answer answer;
    Json collected; ///< The part of the answer that earlier slices have made.
};

RequestRunner::RequestRunner(const std::shared_ptr<ZelUnified::UnifiedFactory>& factory,
                             std::shared_ptr<const ConfigInspector> configInspector)
    : inspector(std::move(configInspector)), tasks(factory) {}

RequestRunner::Step RequestRunner::findStep(const std::string& verb) {
    static const std::map<std::string, Step> steps{{"hello", &RequestRunner::greet},
                                                   {"get", &RequestRunner::get},
                                                   {"explain", &RequestRunner::explain},
                                                   {"list", &RequestRunner::list},
                                                   {"stores", &RequestRunner::listStores},
                                                   {"report", &RequestRunner::report},
                                                   {"log", &RequestRunner::log},
                                                   {"health", &RequestRunner::health},
                                                   {"set", &RequestRunner::set},
                                                   {"reset", &RequestRunner::reset},
                                                   {"provision", &RequestRunner::provision},
                                                   {"reset-provisioning", &RequestRunner::resetProvisioning},
                                                   {"remove-store", &RequestRunner::removeStore},
                                                   {"refresh", &RequestRunner::refresh},
                                                   {"dump", &RequestRunner::dump},
                                                   {"load", &RequestRunner::load}};
    const auto found = steps.find(verb);
    if (found == steps.end()) {
        throw RequestError(Code::Usage, "unknown verb");
    }
    return found->second;
}

void RequestRunner::run(const InspectionRequest& request, long process, const Answer& answer) {
    const auto job = std::make_shared<Job>(request, answer);
    job->guard([&] {
        const auto step = findStep(request.verb);
        if (request.showSecrets) {
            logSecretRequest(request, process);
        }
        (this->*step)(job);
    });
}

/// The text comes from another process, so it is quoted: a line feed in it must not look like the next log line.
void RequestRunner::logSecretRequest(const InspectionRequest& request, long process) {
    auto asked = Json(request.keys.empty() ? std::vector{toString(request.key)} : std::vector<std::string>());
    for (const auto& key : request.keys) {
        asked.push_back(toString(key));
    }
    ZelLog(requestLogger, ZelLogLevel::Info, ZEL_HERE,
           "Process " + std::to_string(process) + " asks for sensitive values: " +
               Json(request.verb).dump(-1, ' ', true) + " " + asked.dump(-1, ' ', true));
}

void RequestRunner::greet(const JobPointer& job) {
    onServices(job, [this, job] {
        job->reply({{"type", "hello"},
                    {"protocol", 1},
                    {"version", LUMORA_VERSION},
                    {"profile", KyrCoreUtils::FileUtils::getConfigDirectory()},
                    {"changesAllowed", changesAllowed && inspector->administratorAllowsChanges()}});
    });
}

void RequestRunner::get(const JobPointer& job) {
    onServices(job, [this, job] {
        const auto& request = job->request;
        auto reading = request.store.empty() ? inspector->read(request.key, request.admin)
                                             : inspector->readStore(request.store, request.key);
        job->reply(inspector->showValue(request.key, std::move(reading), request.showSecrets));
    });
}

void RequestRunner::explain(const JobPointer& job) {
    onServices(job, [this, job] {
        const auto& request = job->request;
        job->collected = inspector->beginExplanation(request.key, request.showSecrets);
        const auto winner = inspector->read(request.key, false);
        tasks.runSlices(nameTask("explain"), [self = shared_from_this(), job, winner, stores = inspector->getStores(),
                                              next = std::size_t{0}]() mutable {
            return job->guard([&] {
                if (next == stores.size()) {
                    job->reply(job->collected);
                    return;
                }
                job->collected["stores"].push_back(
                    self->inspector->showOpinion(*stores[next], job->request.key, winner, job->request.showSecrets));
            }) && next++ < stores.size();
        });
    });
}

void RequestRunner::list(const JobPointer& job) {
    job->collected = {{"type", "list"}, {"values", Json::array()}};
    tasks.runSlices(nameTask("list"), [self = shared_from_this(), job, last = std::wstring()]() mutable {
        bool more = false;
        return job->guard([&] {
            const auto before = last;
            const auto records = self->inspector->getRecords().getRecordsBehind(last, recordsPerSlice);
            for (const auto& record : records) {
                last = record->getKey();
                if (record->getisDefined() && isAsked(job->request, last)) {
                    job->collected["values"].push_back(self->inspector->showRecord(*record, job->request.showSecrets));
                }
            }
            // The list ends although the client adds records: each slice begins behind the last one.
            more = records.size() == recordsPerSlice && KyrCoreUtils::caseInsensitiveStringCompare(before, last) < 0;
            if (!more) {
                job->reply(job->collected);
            }
        }) && more;
    });
}

void RequestRunner::listStores(const JobPointer& job) {
    onServices(job, [this, job] {
        job->collected = {{"type", "stores"}, {"stores", Json::array()}};
        tasks.runSlices(nameTask("stores"), [job, stores = inspector->getStores(), next = std::size_t{0}]() mutable {
            return job->guard([&] {
                if (next == stores.size()) {
                    job->reply(job->collected);
                    return;
                }
                job->collected["stores"].push_back(ConfigInspector::showStore(*stores[next]));
            }) && next++ < stores.size();
        });
    });
}

void RequestRunner::report(const JobPointer& job) {
    onServices(job, [this, job] {
        job->reply({{"type", "report"}, {"text", toString(inspector->getService().getAllConfigForPRT())}});
    });
}

void RequestRunner::log(const JobPointer& job) {
    onServices(job, [this, job] {
        const LogLineCatcher line("ConfigService-ConfigServiceImpl", LogLineCatcher::Threads::Calling);
        inspector->getService().logConfig();
        job->reply({{"type", "log"}, {"text", line.getText()}});
    });
}

void RequestRunner::health(const JobPointer& job) {
    // The files are read on the background thread, since that takes long.
    tasks.runInBackground(nameTask("health"), [job] { job->guard([&] { job->reply(reportStorage()); }); });
}

void RequestRunner::set(const JobPointer& job) {
    const auto& request = job->request;
    if (!request.force) {
        requireStorableKey(request.key);
        requireStorableValue(request.value);
        requirePermitted(request);
    }
    onServices(job, [this, job] {
        requireChangesAllowed();
        const auto key = spell(job->request.key);
        if (key.empty() || !inspector->getFeatureSet().setConfig(job->request.key, job->request.value)) {
            throw RequestError(Code::Refused, "no store takes the key '" + key + "'");
        }
        confirmWritten(job, [this, job, key] { return key + " set; " + inspector->describeOutcome(job->request.key); });
    });
}

void RequestRunner::reset(const JobPointer& job) {
    onServices(job, [this, job] {
        requireChangesAllowed();
        const auto names = ConfigKeys::getKeyNames(job->request.key).getAll();
        if (!inspector->userHolds(job->request.key)) {
            throw RequestError(Code::Refused, "the user has no value for the key '" + spell(job->request.key) + "'");
        }
        removeFromUserStore(job, names, [this, job] {
            inspector->getService().resetConfig(job->request.key);
            confirmWritten(job, [this, job] {
                return spell(job->request.key) + " reset; " + inspector->describeOutcome(job->request.key);
            });
        });
    });
}

void RequestRunner::provision(const JobPointer& job) {
    onServices(job, [this, job] {
        requireChangesAllowed();
        const auto policy = inspector->read(std::wstring(ConfigKeys::allowUrlProvisioning), false);
        const bool allowed = !policy || !caseInsensitiveStringEquals(policy->value, L"false");
        if (!inspector->getService().setUrlProvisioningData(job->request.url)) {
            throw RequestError(Code::Refused,
                               allowed ? "the URL holds no setting that may be provisioned"
                                       : "provisioning by URL is not allowed: AllowUrlProvisioning is false");
        }
        confirmWritten(job, [] { return "settings of the URL taken; another URL needs reset-provisioning first"; });
    });
}

void RequestRunner::resetProvisioning(const JobPointer& job) {
    onServices(job, [this, job] {
        requireChangesAllowed();
        removeFromUserStore(job, {std::wstring(ConfigKeys::allowUrlProvisioning)}, [this, job] {
            if (!inspector->getService().resetAllowUriProvisioningData()) {
                throw RequestError(Code::Refused,
                                   "there was nothing to take back: the user's settings do not forbid provisioning");
            }
            confirmWritten(job, [] { return "another provisioning URL is allowed"; });
        });
    });
}

void RequestRunner::removeStore(const JobPointer& job) {
    onServices(job, [this, job] {
        requireChangesAllowed();
        const auto& name = job->request.store;
        if (!inspector->getFeatureSet().removeConfigStore(name)) {
            throw RequestError(Code::Refused, "there is no store '" + name + "'");
        }
        confirmWritten(job, [name] { return name + " removed"; });
    });
}

void RequestRunner::refresh(const JobPointer& job) {
    // A store that reads its file again must not overtake a queued write to it.
    behindWrites(job, [this, job] {
        requireChangesAllowed();
        inspector->getFeatureSet().refreshConfigFeatureSet();
        job->reportDone("the stores that are not local are read anew");
    });
}

void RequestRunner::dump(const JobPointer& job) {
    onServices(job, [this, job] {
        const auto all = std::make_shared<SettingsReport>(inspector, job->request);
        tasks.runSlices(nameTask("dump"), [job, all] {
            bool more = false;
            return job->guard([&] {
                more = all->proceed();
                if (!more) {
                    job->reply(all->take());
                }
            }) && more;
        });
    });
}

/// Sets all values in one task, because other tasks must not find a part of them.
void RequestRunner::load(const JobPointer& job) {
    const auto values = std::make_shared<ValueLoad>(job->request);
    onServices(job, [this, job, values] {
        values->count(*inspector);
        if (values->isDryRun()) {
            job->reply(values->describe());
            return;
        }
        requireChangesAllowed();
        values->set(*inspector);
        tasks.runInBackground(nameTask("load"), [job, values] {
            job->guard([&] {
                requireUserFileWritten();
                job->reply(values->describe());
            });
        });
    });
}

void RequestRunner::onServices(const JobPointer& job, std::function<void()> work) const {
    tasks.run(nameTask(job->request.verb),
              [self = shared_from_this(), job, work = std::move(work)] { job->guard(work); });
}

void RequestRunner::behindWrites(const JobPointer& job, std::function<void()> work) const {
    tasks.runInBackground(nameTask(job->request.verb),
                          [self = shared_from_this(), job, work = std::move(work)] { self->onServices(job, work); });
}

void RequestRunner::requireChangesAllowed() const {
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
void RequestRunner::removeFromUserStore(const JobPointer& job, const std::vector<std::wstring>& names,
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
    tasks.runInBackground(nameTask("write user's file"),
                          [self = shared_from_this(), job, store, work = std::move(work)] {
                              store->persistValues();
                              self->onServices(job, work);
                          });
}

void RequestRunner::confirmWritten(const JobPointer& job, const std::function<std::string()>& describe) const {
    tasks.runInBackground(nameTask(job->request.verb), [self = shared_from_this(), job, describe] {
        job->guard([&] {
            requireUserFileWritten();
            self->onServices(job, [job, describe] { job->reportDone(describe()); });
        });
    });
}

} // namespace inspection
