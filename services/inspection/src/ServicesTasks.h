#pragma once

#include <unified/UnifiedFactory.h>

#include <functional>
#include <memory>
#include <string>

namespace inspection {

/// Posts short tasks to the client's dispatchers; never waits. Any thread.
class ServicesTasks {
public:
    explicit ServicesTasks(const std::shared_ptr<ZelUnified::UnifiedFactory>& factory);

    /// Runs `work` on the services dispatcher's thread.
    void run(const std::string& name, std::function<void()> work) const;
    /// Runs `slice` on that thread repeatedly until it returns false, each time after the tasks that the client has
    /// posted meanwhile.
    void runSlices(const std::string& name, std::function<bool()> slice) const;
    /// Runs `work` on the background dispatcher's thread, after the queued writes.
    void runInBackground(const std::string& name, std::function<void()> work) const;

private:
    const std::shared_ptr<ZelUnified::Processing::ServicesDispatcher> services;
    const std::shared_ptr<ZelUnified::Processing::TaskDispatcher> background;
};

} // namespace inspection
