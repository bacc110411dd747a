#include "RequestRunner.h"

#include "ChainReport.h"
#include "KeyReport.h"
#include "SettingsReport.h"
#include "StorageReport.h"

#include <kyr/FileUtils.h>
#include <kyr/StringUtils.h>
#include <zel/LogLineCatcher.h>
#include <zel/ZelLog.h>

#include <ConfigCatalogue.h>
#include <ConfigMap.h>

#include <map>
#include <utility>

namespace inspection {

using KyrCoreUtils::caseInsensitiveStringEquals;
using KyrCoreUtils::matchesWildcards;
using KyrCoreUtils::toString;
using zel::logging::LogLineCatcher;
using Code = RequestError::Code;

namespace {

ZelLogger& requestLogger = ZelLogger_getLogger("Inspection-RequestRunner");

/// Few enough that a slice takes a fraction of a millisecond.
constexpr std::size_t recordsPerSlice = 64;

bool beginsWith(std::wstring_view text, std::wstring_view prefix) {
    return text.size() >= prefix.size() && caseInsensitiveStringEquals(text.substr(0, prefix.size()), prefix);
}

bool isNamed(const InspectionRequest& request, const std::wstring& key) {
    return beginsWith(key, request.prefix) && (request.pattern.empty() || matchesWildcards(key, request.pattern));
}

} // namespace

RequestRunner::RequestRunner(const std::shared_ptr<ZelUnified::UnifiedFactory>& factory,
                             std::shared_ptr<const ConfigInspector> configInspector)
    : inspector(std::move(configInspector)),
      changes(std::make_shared<ChangeRunner>(factory, inspector)),
      tasks(factory) {}

RequestRunner::Step RequestRunner::findStep(const std::string& verb) {
    static const std::map<std::string, Step> steps{
        {"hello", &RequestRunner::greet},       {"get", &RequestRunner::get},
        {"explain", &RequestRunner::explain},   {"explanations", &RequestRunner::explainAll},
        {"describe", &RequestRunner::describe}, {"list", &RequestRunner::list},
        {"keys", &RequestRunner::listKeys},     {"stores", &RequestRunner::listStores},
        {"report", &RequestRunner::report},     {"log", &RequestRunner::log},
        {"health", &RequestRunner::health},     {"dump", &RequestRunner::dump}};
    const auto found = steps.find(verb);
    if (found == steps.end()) {
        throw RequestError(Code::Usage, "unknown verb");
    }
    return found->second;
}

void RequestRunner::run(const InspectionRequest& request, long process, const Answer& answer) {
    const auto job = std::make_shared<RequestJob>(request, answer);
    job->guard([&] {
        if (changes->run(job)) {
            return;
        }
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
                    {"changesAllowed", changes->areChangesAllowed()}});
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
        runSlices(job, [this, job, winner, stores = inspector->getStores(), next = std::size_t{0}]() mutable {
            if (next == stores.size()) {
                job->reply(std::move(job->collected));
                return false;
            }
            job->collected["stores"].push_back(
                inspector->showOpinion(*stores[next++], job->request.key, winner, job->request.showSecrets));
            return true;
        });
    });
}

void RequestRunner::explainAll(const JobPointer& job) {
    onServices(job, [this, job] {
        const auto all = std::make_shared<ChainReport>(inspector, job->request.showSecrets);
        runSlices(job, [job, all] {
            if (all->proceed()) {
                return true;
            }
            job->reply(all->extract());
            return false;
        });
    });
}

void RequestRunner::describe(const JobPointer& job) {
    onServices(job, [this, job] {
        const auto& key = job->request.key;
        const auto description = inspector->describe(key, job->request.showSecrets);
        if (description.is_null()) {
            throw RequestError(Code::Refused,
                               "the catalogue does not contain the key '" + toString(key) + "', and no store holds it");
        }
        job->reply(description);
    });
}

void RequestRunner::list(const JobPointer& job) {
    job->collected = {{"type", "list"}, {"values", Json::array()}};
    job->request.store.empty() ? listRecords(job) : listStore(job);
}

void RequestRunner::listRecords(const JobPointer& job) {
    runSlices(job, [this, job, last = std::wstring()]() mutable {
        const auto before = last;
        const auto records = inspector->getRecords().getRecordsAfter(last, recordsPerSlice);
        for (const auto& record : records) {
            last = record->getKey();
            if (record->getisDefined() && isAsked(job->request, last)) {
                job->collected["values"].push_back(inspector->showRecord(*record, job->request.showSecrets));
            }
        }
        // The list ends although the client adds records: each slice begins behind the last one.
        if (records.size() == recordsPerSlice && KyrCoreUtils::caseInsensitiveStringCompare(before, last) < 0) {
            return true;
        }
        job->reply(std::move(job->collected));
        return false;
    });
}

void RequestRunner::listStore(const JobPointer& job) {
    onServices(job, [this, job] {
        const auto& name = job->request.store;
        const auto store = inspector->getFeatureSet().getConfigStoreByName(name);
        if (!store) {
            throw RequestError(Code::Refused, "there is no store '" + name + "'");
        }
        const auto held = store->getKeys();
        runSlices(job, [this, job, store, keys = ZelUnified::ConfigKeySet(held.begin(), held.end())]() mutable {
            for (std::size_t count = 0; count < recordsPerSlice && !keys.empty(); ++count) {
                const auto key = keys.extract(keys.begin()).value();
                auto value = inspector->showStored(*store, key, job->request.showSecrets);
                if (!value.is_null() && isAsked(job->request, key)) {
                    job->collected["values"].push_back(std::move(value));
                }
            }
            if (!keys.empty()) {
                return true;
            }
            job->reply(std::move(job->collected));
            return false;
        });
    });
}

void RequestRunner::listKeys(const JobPointer& job) {
    // The catalogue is constant, so this needs no dispatcher.
    auto keys = Json::array();
    for (const auto& row : ZelUnified::ConfigKeys::keys) {
        const bool isNamedSo = isNamed(job->request, std::wstring(row.name)) ||
                               (row.isRenamed() && isNamed(job->request, std::wstring(row.oldName)));
        if (isNamedSo && (!job->request.sensitive || row.isSensitive())) {
            keys.push_back(showKey(row));
        }
    }
    job->reply({{"type", "keys"}, {"keys", std::move(keys)}});
}

void RequestRunner::listStores(const JobPointer& job) {
    onServices(job, [this, job] {
        job->collected = {{"type", "stores"}, {"stores", Json::array()}};
        runSlices(job, [job, stores = inspector->getStores(), next = std::size_t{0}]() mutable {
            if (next == stores.size()) {
                job->reply(std::move(job->collected));
                return false;
            }
            job->collected["stores"].push_back(ConfigInspector::showStore(*stores[next++]));
            return true;
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
    tasks.runInBackground(job->nameTask(), [job] { job->guard([&] { job->reply(reportStorage()); }); });
}

void RequestRunner::dump(const JobPointer& job) {
    onServices(job, [this, job] {
        const auto all = std::make_shared<SettingsReport>(inspector, job->request);
        runSlices(job, [job, all] {
            if (all->proceed()) {
                return true;
            }
            job->reply(all->extract());
            return false;
        });
    });
}

void RequestRunner::onServices(const JobPointer& job, std::function<void()> work) const {
    runStep(tasks, job, [self = shared_from_this(), work = std::move(work)] { work(); });
}

void RequestRunner::runSlices(const JobPointer& job, std::function<bool()> slice) const {
    tasks.runSlices(job->nameTask(), [self = shared_from_this(), job, slice = std::move(slice)] {
        bool more = false;
        return job->guard([&] { more = slice(); }) && more;
    });
}

bool RequestRunner::isAsked(const InspectionRequest& request, const std::wstring& key) const {
    return isNamed(request, key) && (!request.sensitive || inspector->isSensitive(key));
}

} // namespace inspection
