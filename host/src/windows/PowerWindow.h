#pragma once

#include "zel/PowerEventSource.h"

#include <memory>
#include <thread>

namespace ZelSystemMonitor {

/// Receives the system's power events on its own thread, in a hidden window, because they are sent to windows only. If
/// no window can be created, the thread ends immediately.
class PowerWindow final : public PowerEventSource {
public:
    explicit PowerWindow(PowerEventReceiver receiver);
    ~PowerWindow() override;
    PowerWindow(const PowerWindow&) = delete;
    PowerWindow& operator=(const PowerWindow&) = delete;

private:
    class Loop;

    const std::shared_ptr<Loop> loop; ///< Shared with the thread, which may outlive this object.
    std::thread thread;
};

} // namespace ZelSystemMonitor
