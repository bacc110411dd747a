#pragma once

#include "ChangeRunner.h"
#include "ConfigInspector.h"
#include "RequestJob.h"
#include "ServicesTasks.h"

#include <functional>
#include <memory>
#include <string>

namespace inspection {

/// Carries out requests, except those that concern one connection (`watch` and `unwatch`), as short tasks of the
/// client's dispatchers. Called on the socket's thread. The tasks keep the runner alive.
class RequestRunner : public std::enable_shared_from_this<RequestRunner> {
public:
    using Answer = RequestJob::Answer;

    RequestRunner(const std::shared_ptr<ZelUnified::UnifiedFactory>& factory,
                  std::shared_ptr<const ConfigInspector> configInspector);

    /// `process` is the process that asks; it is logged if it asks for secrets.
    void run(const InspectionRequest& request, long process, const Answer& answer);
    /// Logs that a process asks for sensitive values; never logs a value.
    static void logSecretRequest(const InspectionRequest& request, long process);
    /// Any thread.
    void setChangesAllowed(bool allowed) { changes->setChangesAllowed(allowed); }

private:
    using Step = void (RequestRunner::*)(const JobPointer&);

    static Step findStep(const std::string& verb);

    void greet(const JobPointer& job);
    void get(const JobPointer& job);
    void explain(const JobPointer& job);
    void explainAll(const JobPointer& job);
    void describe(const JobPointer& job);
    void list(const JobPointer& job);
    void listRecords(const JobPointer& job);
    void listStore(const JobPointer& job);
    void listKeys(const JobPointer& job);
    void listStores(const JobPointer& job);
    void report(const JobPointer& job);
    void log(const JobPointer& job);
    void health(const JobPointer& job);
    void dump(const JobPointer& job);

    /// Runs `work` on the services dispatcher's thread.
    void onServices(const JobPointer& job, std::function<void()> work) const;
    /// Runs `slice` on that thread repeatedly until it returns false, which it does after it has replied. If it throws,
    /// answers with the failure.
    void runSlices(const JobPointer& job, std::function<bool()> slice) const;
    /// Returns whether a request for a list selects this key.
    bool isAsked(const InspectionRequest& request, const std::wstring& key) const;

    const std::shared_ptr<const ConfigInspector> inspector;
    const std::shared_ptr<ChangeRunner> changes;
    const ServicesTasks tasks;
};

} // namespace inspection
