#pragma once

#include "ConfigInspector.h"
#include "InspectionRequest.h"
#include "ServicesTasks.h"

#include <atomic>
#include <functional>
#include <memory>
#include <string>

namespace inspection {

/// Carries out requests, except those that concern one connection (`watch` and `unwatch`), as short tasks of the
/// client's dispatchers. Called on the socket's thread. The tasks keep the runner alive.
class RequestRunner : public std::enable_shared_from_this<RequestRunner> {
public:
    /// Receives the reply, exactly once, on any thread. If the client ends first, it is destroyed without a call.
    using Answer = std::function<void(Json)>;

    RequestRunner(const std::shared_ptr<ZelUnified::UnifiedFactory>& factory,
                  std::shared_ptr<const ConfigInspector> configInspector);

    /// `process` is the process that asks; it is logged if it asks for secrets.
    void run(const InspectionRequest& request, long process, const Answer& answer);
    /// Logs that a process asks for sensitive values; never logs a value.
    static void logSecretRequest(const InspectionRequest& request, long process);
    /// Any thread.
    void setChangesAllowed(bool allowed) { changesAllowed = allowed; }

private:
    /// A request with the place for its answer. Answers with a failure what a step throws.
    struct Job;
    using JobPointer = std::shared_ptr<Job>;
    using Step = void (RequestRunner::*)(const JobPointer&);

    static Step findStep(const std::string& verb);

    void greet(const JobPointer& job);
    void get(const JobPointer& job);
    void explain(const JobPointer& job);
    void list(const JobPointer& job);
    void listStores(const JobPointer& job);
    void report(const JobPointer& job);
    void log(const JobPointer& job);
    void health(const JobPointer& job);
    void set(const JobPointer& job);
    void reset(const JobPointer& job);
    void provision(const JobPointer& job);
    void resetProvisioning(const JobPointer& job);
    void removeStore(const JobPointer& job);
    void refresh(const JobPointer& job);
    void dump(const JobPointer& job);
    void load(const JobPointer& job);

    /// Runs `work` on the services dispatcher's thread.
    void onServices(const JobPointer& job, std::function<void()> work) const;
    /// Runs `work` there once the writes that are queued now have been carried out.
    void behindWrites(const JobPointer& job, std::function<void()> work) const;
    void requireChangesAllowed() const;
    void removeFromUserStore(const JobPointer& job, const std::vector<std::wstring>& names, std::function<void()> work);
    /// Waits for the queued writes and answers, or fails if the user's file could not be written.
    void confirmWritten(const JobPointer& job, const std::function<std::string()>& describe) const;

    const std::shared_ptr<const ConfigInspector> inspector;
    const ServicesTasks tasks;
    std::atomic<bool> changesAllowed = true;
};

} // namespace inspection
