#pragma once

namespace zel::platform {

/// Returns the descriptor that becomes readable when a signal asks the process to end (see EndSignals), and stays so;
/// -1 if nobody catches signals, which poll() ignores.
int getEndSignalPipe() noexcept;

} // namespace zel::platform
