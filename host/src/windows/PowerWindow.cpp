#include "PowerWindow.h"

#include "PowerMessages.h"

#include <zel/ZelLog.h>

#include <windows.h>

#include <future>
#include <string>
#include <utility>

namespace ZelSystemMonitor {

namespace {

ZelLogger& powerLogger = ZelLogger_getLogger("SystemMonitor-PowerWindow");

constexpr const wchar_t* className = L"LumoraPowerEvents";

LRESULT CALLBACK onMessage(HWND window, UINT message, WPARAM first, LPARAM second) {
    auto* const messages = reinterpret_cast<PowerMessages*>(::GetWindowLongPtrW(window, GWLP_USERDATA));
    const auto answer = messages != nullptr ? messages->handle(message, first) : std::nullopt;
    return answer ? *answer : ::DefWindowProcW(window, message, first, second);
}

} // namespace

/// The loop of the thread. It runs until stop() is called.
class PowerWindow::Loop {
public:
    explicit Loop(PowerEventReceiver receiver) : messages(std::move(receiver)) {}

    void run() {
        MSG message{};
        ::PeekMessageW(&message, nullptr, WM_USER, WM_USER, PM_NOREMOVE); // creates the queue that stop() posts to
        threadId.set_value(::GetCurrentThreadId());
        const HWND window = open();
        if (window == nullptr) {
            ZelLog(powerLogger, ZelLogLevel::Info, ZEL_HERE,
                   "No power events are delivered: error " + std::to_string(::GetLastError()));
            return;
        }
        while (::GetMessageW(&message, nullptr, 0, 0) > 0) {
            ::DispatchMessageW(&message);
        }
        ::DestroyWindow(window);
    }

    void stop() { ::PostThreadMessageW(threadId.get_future().get(), WM_QUIT, 0, 0); }

private:
    /// The window is invisible, but no message-only window, since those receive no broadcasts.
    HWND open() {
        WNDCLASSW type{};
        type.lpfnWndProc = &onMessage;
        type.hInstance = ::GetModuleHandleW(nullptr);
        type.lpszClassName = className;
        ::RegisterClassW(&type); // fails if an earlier loop has registered it
        const HWND window =
            ::CreateWindowExW(0, className, L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, type.hInstance, nullptr);
        if (window != nullptr) {
            ::SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&messages));
        }
        return window;
    }

    PowerMessages messages;
    std::promise<DWORD> threadId;
};

PowerWindow::PowerWindow(PowerEventReceiver receiver)
    : loop(std::make_shared<Loop>(std::move(receiver))), thread([running = loop] { running->run(); }) {}

PowerWindow::~PowerWindow() {
    loop->stop();
    if (thread.get_id() == std::this_thread::get_id()) {
        thread.detach(); // the receiver destroyed this object during an event
        return;
    }
    thread.join();
}

std::unique_ptr<PowerEventSource> openPowerEventSource(PowerEventReceiver receiver) {
    return std::make_unique<PowerWindow>(std::move(receiver));
}

} // namespace ZelSystemMonitor
