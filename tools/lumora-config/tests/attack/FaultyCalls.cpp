// Replaces the functions of the C library that change files. They follow the FaultPlan, write the OperationRecord, and
// make system calls themselves.
#include "FaultPlan.h"
#include "OperationRecord.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <sys/uio.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <functional>
#include <string>

namespace {

using attack::FaultPlan;
using attack::OperationRecord;
using Outcome = attack::FaultPlan::Outcome;

std::string targetOf(const std::string& link) {
    std::array<char, PATH_MAX> buffer{};
    const ssize_t length = readlink(link.c_str(), buffer.data(), buffer.size());
    return length < 0 ? std::string() : std::string(buffer.data(), static_cast<std::size_t>(length));
}

std::string pathOf(int file) {
    return targetOf("/proc/self/fd/" + std::to_string(file));
}

std::string pathOf(int directory, const char* path) {
    if (*path == '/') {
        return path;
    }
    return (directory == AT_FDCWD ? targetOf("/proc/self/cwd") : pathOf(directory)) + '/' + path;
}

[[noreturn]] void die() {
    kill(getpid(), SIGKILL);
    for (;;) {
        pause();
    }
}

/// Returns true if the operation on this path must fail, with errno set. If the process must be killed, calls
/// `beforeDeath`, if any, and does not return.
bool failsNow(const char* operation, const std::string& path, const std::function<void()>& beforeDeath = {}) {
    auto& plan = FaultPlan::get();
    if (!plan.covers(path)) {
        return false;
    }
    const Outcome outcome = plan.next(operation, path);
    if (outcome == Outcome::Kills) {
        if (beforeDeath) {
            beforeDeath();
        }
        die();
    }
    if (outcome == Outcome::Fails) {
        errno = plan.getError();
    }
    return outcome == Outcome::Fails;
}

/// A sync that fails has lost what was written: the kernel drops those pages.
bool syncFailsNow(int file) {
    if (!failsNow("sync", pathOf(file))) {
        return false;
    }
    const int error = errno;
    syscall(SYS_ftruncate, file, 0);
    errno = error;
    return true;
}

/// Makes the system call and, if it succeeded and changes `path`, adds it to the record before another thread makes
/// one. `describe` receives the record and the result.
template <typename Call, typename Describe>
long makeCall(const std::string& path, Call call, Describe describe) {
    auto& record = OperationRecord::get();
    if (!record.isActive() || !FaultPlan::get().covers(path)) {
        return call();
    }
    const auto lock = record.lock();
    const long result = call();
    const int error = errno;
    if (result >= 0) {
        describe(record, result);
    }
    errno = error;
    return result;
}

int openedFile(int directory, const char* path, int flags, mode_t mode) {
    const auto open = [&] { return syscall(SYS_openat, directory, path, flags, mode); };
    if ((flags & (O_CREAT | O_TRUNC)) == 0) {
        return static_cast<int>(open());
    }
    const std::string full = pathOf(directory, path);
    if (failsNow("open", full)) {
        return -1;
    }
    bool existed = true;
    return static_cast<int>(makeCall(
        full,
        [&] {
            existed = syscall(SYS_faccessat, directory, path, F_OK) == 0;
            return open();
        },
        [&](const OperationRecord& record, long) {
            if (!existed) {
                record.add({"create", full});
            } else if ((flags & O_TRUNC) != 0) {
                record.add({"truncate", full, "0"});
            }
        }));
}

/// Writes at the offset, or at the position of the file if that is -1.
ssize_t writtenBytes(int file, const void* bytes, std::size_t size, off_t offset) {
    const auto write = [&](std::size_t count) {
        return offset < 0 ? syscall(SYS_write, file, bytes, count) : syscall(SYS_pwrite64, file, bytes, count, offset);
    };
    const std::string path = pathOf(file);
    if (failsNow("write", path, [&] { write(size / 2); })) {
        return -1;
    }
    if (auto& record = OperationRecord::get(); record.isActive() && file == STDOUT_FILENO) {
        const auto lock = record.lock();
        record.add({"output", OperationRecord::toHex(bytes, size)});
        return write(size);
    }
    return makeCall(
        path, [&] { return write(size); },
        [&](const OperationRecord& record, long count) {
            const off_t begin = offset < 0 ? lseek(file, 0, SEEK_CUR) - count : offset;
            record.add(
                {"write", path, std::to_string(begin), OperationRecord::toHex(bytes, static_cast<std::size_t>(count))});
        });
}

/// Never fails: only the record of who holds a lock is truncated by this call.
int truncatedFile(int file, off_t size) {
    const std::string path = pathOf(file);
    return static_cast<int>(makeCall(
        path, [&] { return syscall(SYS_ftruncate, file, size); },
        [&](const OperationRecord& record, long) {
            record.add({"truncate", path, std::to_string(size)});
        }));
}

int syncedFile(int file, long call) {
    if (syncFailsNow(file)) {
        return -1;
    }
    const std::string path = pathOf(file);
    return static_cast<int>(makeCall(
        path, [&] { return syscall(call, file); },
        [&](const OperationRecord& record, long) {
            struct stat status {};
            const bool isDirectory = fstat(file, &status) == 0 && S_ISDIR(status.st_mode);
            record.add({isDirectory ? "sync-directory" : "sync", path});
        }));
}

int removedName(int directory, const char* path, int flags) {
    const std::string full = pathOf(directory, path);
    if (failsNow("unlink", full)) {
        return -1;
    }
    return static_cast<int>(makeCall(
        full, [&] { return syscall(SYS_unlinkat, directory, path, flags); },
        [&](const OperationRecord& record, long) {
            record.add({"unlink", full});
        }));
}

int renamedFile(int fromDirectory, const char* from, int toDirectory, const char* to, unsigned flags) {
    const std::string target = pathOf(toDirectory, to);
    if (failsNow("rename", target)) {
        return -1;
    }
    return static_cast<int>(makeCall(
        target, [&] { return syscall(SYS_renameat2, fromDirectory, from, toDirectory, to, flags); },
        [&](const OperationRecord& record, long) {
            record.add({"rename", pathOf(fromDirectory, from), target});
        }));
}

int linkedFile(int fromDirectory, const char* from, int toDirectory, const char* to, int flags) {
    const std::string target = pathOf(toDirectory, to);
    if (failsNow("link", target)) {
        return -1;
    }
    return static_cast<int>(makeCall(
        target, [&] { return syscall(SYS_linkat, fromDirectory, from, toDirectory, to, flags); },
        [&](const OperationRecord& record, long) {
            record.add({"link", pathOf(fromDirectory, from), target});
        }));
}

int createdDirectory(int directory, const char* path, mode_t mode) {
    const std::string full = pathOf(directory, path);
    if (failsNow("mkdir", full)) {
        return -1;
    }
    return static_cast<int>(makeCall(
        full, [&] { return syscall(SYS_mkdirat, directory, path, mode); },
        [&](const OperationRecord& record, long) {
            record.add({"mkdir", full});
        }));
}

} // namespace

// The functions have names of their own here, and those of the C library for the linker. open() and openat() take their
// mode as any other function would: the calling conventions of Linux pass it in the same place, and the kernel ignores
// it unless a file is created.
#define LUMORA_REPLACES(name) __asm__(#name) __attribute__((visibility("default")))

extern "C" {

ssize_t faultyWrite(int file, const void* bytes, std::size_t size) LUMORA_REPLACES(write);
ssize_t faultyPwrite(int file, const void* bytes, std::size_t size, off_t offset) LUMORA_REPLACES(pwrite);
ssize_t faultyPwrite64(int file, const void* bytes, std::size_t size, off64_t offset) LUMORA_REPLACES(pwrite64);
ssize_t faultyWritev(int file, const iovec* parts, int count) LUMORA_REPLACES(writev);
int faultyFtruncate(int file, off_t size) LUMORA_REPLACES(ftruncate);
int faultyFtruncate64(int file, off64_t size) LUMORA_REPLACES(ftruncate64);
int faultyFsync(int file) LUMORA_REPLACES(fsync);
int faultyFdatasync(int file) LUMORA_REPLACES(fdatasync);
int faultyOpen(const char* path, int flags, mode_t mode) LUMORA_REPLACES(open);
int faultyOpen64(const char* path, int flags, mode_t mode) LUMORA_REPLACES(open64);
int faultyOpenat(int directory, const char* path, int flags, mode_t mode) LUMORA_REPLACES(openat);
int faultyOpenat64(int directory, const char* path, int flags, mode_t mode) LUMORA_REPLACES(openat64);
int faultyRename(const char* from, const char* to) LUMORA_REPLACES(rename);
int faultyRenameat(int fromDirectory, const char* from, int toDirectory, const char* to) LUMORA_REPLACES(renameat);
int faultyRenameat2(int fromDirectory, const char* from, int toDirectory, const char* to, unsigned flags)
    LUMORA_REPLACES(renameat2);
int faultyLink(const char* from, const char* to) LUMORA_REPLACES(link);
int faultyLinkat(int fromDirectory, const char* from, int toDirectory, const char* to, int flags)
    LUMORA_REPLACES(linkat);
int faultyUnlink(const char* path) LUMORA_REPLACES(unlink);
int faultyUnlinkat(int directory, const char* path, int flags) LUMORA_REPLACES(unlinkat);
int faultyRmdir(const char* path) LUMORA_REPLACES(rmdir);
int faultyRemove(const char* path) LUMORA_REPLACES(remove);
int faultyMkdir(const char* path, mode_t mode) LUMORA_REPLACES(mkdir);
int faultyMkdirat(int directory, const char* path, mode_t mode) LUMORA_REPLACES(mkdirat);

ssize_t faultyWrite(int file, const void* bytes, std::size_t size) {
    return writtenBytes(file, bytes, size, -1);
}

ssize_t faultyPwrite(int file, const void* bytes, std::size_t size, off_t offset) {
    return writtenBytes(file, bytes, size, offset);
}

ssize_t faultyPwrite64(int file, const void* bytes, std::size_t size, off64_t offset) {
    return faultyPwrite(file, bytes, size, offset);
}

ssize_t faultyWritev(int file, const iovec* parts, int count) {
    std::string bytes;
    for (const iovec* part = parts; part < parts + count; ++part) {
        bytes.append(static_cast<const char*>(part->iov_base), part->iov_len);
    }
    return writtenBytes(file, bytes.data(), bytes.size(), -1);
}

int faultyFtruncate(int file, off_t size) {
    return truncatedFile(file, size);
}

int faultyFtruncate64(int file, off64_t size) {
    return truncatedFile(file, size);
}

int faultyFsync(int file) {
    return syncedFile(file, SYS_fsync);
}

int faultyFdatasync(int file) {
    return syncedFile(file, SYS_fdatasync);
}

int faultyOpen(const char* path, int flags, mode_t mode) {
    return openedFile(AT_FDCWD, path, flags, mode);
}

int faultyOpen64(const char* path, int flags, mode_t mode) {
    return openedFile(AT_FDCWD, path, flags, mode);
}

int faultyOpenat(int directory, const char* path, int flags, mode_t mode) {
    return openedFile(directory, path, flags, mode);
}

int faultyOpenat64(int directory, const char* path, int flags, mode_t mode) {
    return openedFile(directory, path, flags, mode);
}

int faultyRename(const char* from, const char* to) {
    return renamedFile(AT_FDCWD, from, AT_FDCWD, to, 0);
}

int faultyRenameat(int fromDirectory, const char* from, int toDirectory, const char* to) {
    return renamedFile(fromDirectory, from, toDirectory, to, 0);
}

int faultyRenameat2(int fromDirectory, const char* from, int toDirectory, const char* to, unsigned flags) {
    return renamedFile(fromDirectory, from, toDirectory, to, flags);
}

int faultyLink(const char* from, const char* to) {
    return linkedFile(AT_FDCWD, from, AT_FDCWD, to, 0);
}

int faultyLinkat(int fromDirectory, const char* from, int toDirectory, const char* to, int flags) {
    return linkedFile(fromDirectory, from, toDirectory, to, flags);
}

int faultyUnlink(const char* path) {
    return removedName(AT_FDCWD, path, 0);
}

int faultyUnlinkat(int directory, const char* path, int flags) {
    return removedName(directory, path, flags);
}

int faultyRmdir(const char* path) {
    return removedName(AT_FDCWD, path, AT_REMOVEDIR);
}

int faultyRemove(const char* path) {
    struct stat status {};
    const bool isDirectory = lstat(path, &status) == 0 && S_ISDIR(status.st_mode);
    return removedName(AT_FDCWD, path, isDirectory ? AT_REMOVEDIR : 0);
}

int faultyMkdir(const char* path, mode_t mode) {
    return createdDirectory(AT_FDCWD, path, mode);
}

int faultyMkdirat(int directory, const char* path, mode_t mode) {
    return createdDirectory(directory, path, mode);
}

} // extern "C"
