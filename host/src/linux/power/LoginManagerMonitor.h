#pragma once

#include "zel/PowerEventSource.h"

#include <memory>
#include <thread>

namespace ZelSystemMonitor {

/// Receives the login manager's signals on its own thread. Without a system bus that thread ends immediately.
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
