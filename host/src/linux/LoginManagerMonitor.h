#pragma once

#include "zel/PowerEventSource.h"

#include <memory>
#include <thread>

namespace ZelSystemMonitor {

/// Listens to the login manager on a thread of its own. Without a system bus that thread ends at once.
class LUMORA_HOST_API LoginManagerMonitor final : public PowerEventSource {
public:
    explicit LoginManagerMonitor(PowerEventReceiver receiver);
    ~LoginManagerMonitor() override;
    LoginManagerMonitor(const LoginManagerMonitor&) = delete;
    LoginManagerMonitor& operator=(const LoginManagerMonitor&) = delete;

private:
    class Loop;

    const std::shared_ptr<Loop> loop; ///< Shared with the thread, which may outlive this object.
    std::thread thread;
};

} // namespace ZelSystemMonitor
