#pragma once

#include <unistd.h>

namespace zel::platform {

/// Owns a descriptor of the kernel; -1 for none.
class FileDescriptor {
public:
    FileDescriptor() = default;
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
    const int number = -1;
};

} // namespace zel::platform
