#include <kyr/HiddenInput.h>

#include <windows.h>

namespace KyrCoreUtils {

namespace {

// The console keeps its mode when a process ends, so an interrupt must restore it: the handler of EndSignals lets the
// process continue, and the destructor runs.
DWORD usualMode = 0;
bool hidden = false;

} // namespace

HiddenInput::HiddenInput() noexcept {
    const auto input = ::GetStdHandle(STD_INPUT_HANDLE);
    hidden = ::GetConsoleMode(input, &usualMode) != 0 &&
             ::SetConsoleMode(input, usualMode & ~static_cast<DWORD>(ENABLE_ECHO_INPUT)) != 0;
}

HiddenInput::~HiddenInput() {
    if (hidden) {
        ::SetConsoleMode(::GetStdHandle(STD_INPUT_HANDLE), usualMode);
        hidden = false;
    }
}

} // namespace KyrCoreUtils
