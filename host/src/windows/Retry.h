#pragma once

#include <windows.h>

#include <chrono>
#include <thread>

namespace zel::platform {

/// What a refused access means for a retry: the replacement of an open file is refused, but so is that of a directory.
enum class Denied { Lasting, ForAMoment };

/// Repeats `call` for at most a second while it fails because another program, such as a virus scanner or an indexer,
/// has the file open for a moment. `call` returns a BOOL; the error of its last run stays that of the thread.
template <class Call>
bool whileShared(Call call, Denied denied = Denied::Lasting) {
    constexpr int mostTries = 50;
    constexpr std::chrono::milliseconds pause(20);
    for (int tries = 1;; ++tries) {
        if (call() != FALSE) {
            return true;
        }
        const DWORD error = ::GetLastError();
        const bool isPassing = error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION ||
                               (error == ERROR_ACCESS_DENIED && denied == Denied::ForAMoment);
        if (!isPassing || tries == mostTries) {
            return false;
        }
        std::this_thread::sleep_for(pause);
    }
}

/// Returns what a refused replacement of `target` means.
inline Denied deniedReplacement(const wchar_t* target) noexcept {
    const DWORD attributes = ::GetFileAttributesW(target);
    constexpr DWORD refused = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY;
    return attributes == INVALID_FILE_ATTRIBUTES || (attributes & refused) != 0 ? Denied::Lasting : Denied::ForAMoment;
}

} // namespace zel::platform
