#pragma once

#include <unistd.h>

namespace zel::platform {

/// Owns a file descriptor and closes it in the destructor. A negative descriptor means none, as a failed system call
/// returns it.
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
