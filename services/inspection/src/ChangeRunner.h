#pragma once

#include "ConfigInspector.h"
#include "RequestJob.h"
#include "ServicesTasks.h"
#include "StorageReport.h"

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace inspection {

/// Carries out the requests that change something. A change is reported as done when it is on the disk. The tasks keep
/// the runner alive.
class ChangeRunner : public std::enable_shared_from_this<ChangeRunner> {
public:
    ChangeRunner(const std::shared_ptr<ZelUnified::UnifiedFactory>& factory,
                 std::shared_ptr<const ConfigInspector> configInspector);

    /// Starts the request. Returns false if its verb is not a change. Socket's thread.
    bool run(const JobPointer& job);
    /// Any thread.
    void setChangesAllowed(bool allowed) { changesAllowed = allowed; }
    /// Returns whether the host and the administrator allow changes. Services dispatcher's thread.
    bool areChangesAllowed() const { return changesAllowed && inspector->administratorAllowsChanges(); }

private:
    using Step = void (ChangeRunner::*)(const JobPointer&);

    static Step findStep(const std::string& verb);

    void set(const JobPointer& job);
    void setInMemory(const JobPointer& job);
    void setManaged(const JobPointer& job);
    void reset(const JobPointer& job);
    void provision(const JobPointer& job);
    void resetProvisioning(const JobPointer& job);
    void removeStore(const JobPointer& job);
    void refresh(const JobPointer& job);
    void load(const JobPointer& job);

    /// Runs `change` on the services dispatcher's thread, unless changes are refused.
    void onServices(const JobPointer& job, std::function<void()> change);
    void requireChangesAllowed() const;
    void removeFromUserStore(const JobPointer& job, const std::vector<std::wstring>& names, std::function<void()> work);
    /// Waits for the queued writes and answers with `describe`, or fails if one of the expected ones is missing.
    void confirmWritten(const JobPointer& job, std::vector<ExpectedWrite> expected,
                        std::function<std::string()> describe);
    /// Returns the write of the user's file, which is expected from now on.
    ExpectedWrite expectUsersFile(const std::string& what) const;

    const std::shared_ptr<const ConfigInspector> inspector;
    const ServicesTasks tasks;
    std::atomic<bool> changesAllowed = true;
};

} // namespace inspection
