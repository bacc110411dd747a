#pragma once

#include <unistd.h>

namespace zel::platform {

/// Owns a descriptor of the kernel; negative for none, as a call that failed gives it.
class FileDescriptor {
public:
    explicit FileDescriptor(int opened) : number(opened) {}
    ~FileDescriptor() {
        if (number >= 0) {
            ::close(number);
        }
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    int get() const noexcept { return number; }

private:
    const int number;
};

} // namespace zel::platform
