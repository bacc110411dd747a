#pragma once

#include <windows.h>

#include <utility>

namespace zel::platform {

/// Owns a handle of the system and closes it.
class SystemHandle {
public:
    SystemHandle() = default;
    explicit SystemHandle(HANDLE opened) noexcept : handle(opened == INVALID_HANDLE_VALUE ? nullptr : opened) {}
    SystemHandle(SystemHandle&& other) noexcept : handle(std::exchange(other.handle, nullptr)) {}
    SystemHandle& operator=(SystemHandle&& other) noexcept {
        std::swap(handle, other.handle);
        return *this;
    }
    ~SystemHandle() {
        if (handle != nullptr) {
            ::CloseHandle(handle);
        }
    }
    SystemHandle(const SystemHandle&) = delete;
    SystemHandle& operator=(const SystemHandle&) = delete;

    /// Returns null if nothing is open.
    HANDLE get() const noexcept { return handle; }
    explicit operator bool() const noexcept { return handle != nullptr; }
    HANDLE release() noexcept { return std::exchange(handle, nullptr); }

private:
    HANDLE handle = nullptr;
};

} // namespace zel::platform
