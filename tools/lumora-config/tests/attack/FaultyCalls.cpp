// Replaces the functions of the C library that change files, so that a program that preloads this library meets the
// disk faults of its FaultPlan. They make system calls themselves instead of calling the C library's functions.
#include "FaultPlan.h"

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

int openedFile(int directory, const char* path, int flags, mode_t mode) {
    if ((flags & (O_CREAT | O_TRUNC)) != 0 && failsNow("open", pathOf(directory, path))) {
        return -1;
    }
    return static_cast<int>(syscall(SYS_openat, directory, path, flags, mode));
}

int removedName(int directory, const char* path, int flags) {
    if (failsNow("unlink", pathOf(directory, path))) {
        return -1;
    }
    return static_cast<int>(syscall(SYS_unlinkat, directory, path, flags));
}

int renamedFile(int fromDirectory, const char* from, int toDirectory, const char* to, unsigned flags) {
    if (failsNow("rename", pathOf(toDirectory, to))) {
        return -1;
    }
    return static_cast<int>(syscall(SYS_renameat2, fromDirectory, from, toDirectory, to, flags));
}

int linkedFile(int fromDirectory, const char* from, int toDirectory, const char* to, int flags) {
    if (failsNow("link", pathOf(toDirectory, to))) {
        return -1;
    }
    return static_cast<int>(syscall(SYS_linkat, fromDirectory, from, toDirectory, to, flags));
}

int createdDirectory(int directory, const char* path, mode_t mode) {
    if (failsNow("mkdir", pathOf(directory, path))) {
        return -1;
    }
    return static_cast<int>(syscall(SYS_mkdirat, directory, path, mode));
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
    if (failsNow("write", pathOf(file), [&] { syscall(SYS_write, file, bytes, size / 2); })) {
        return -1;
    }
    return syscall(SYS_write, file, bytes, size);
}

ssize_t faultyPwrite(int file, const void* bytes, std::size_t size, off_t offset) {
    if (failsNow("write", pathOf(file), [&] { syscall(SYS_pwrite64, file, bytes, size / 2, offset); })) {
        return -1;
    }
    return syscall(SYS_pwrite64, file, bytes, size, offset);
}

ssize_t faultyPwrite64(int file, const void* bytes, std::size_t size, off64_t offset) {
    return faultyPwrite(file, bytes, size, offset);
}

ssize_t faultyWritev(int file, const iovec* parts, int count) {
    if (failsNow("write", pathOf(file), [&] { syscall(SYS_writev, file, parts, count / 2); })) {
        return -1;
    }
    return syscall(SYS_writev, file, parts, count);
}

int faultyFsync(int file) {
    return syncFailsNow(file) ? -1 : static_cast<int>(syscall(SYS_fsync, file));
}

int faultyFdatasync(int file) {
    return syncFailsNow(file) ? -1 : static_cast<int>(syscall(SYS_fdatasync, file));
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
