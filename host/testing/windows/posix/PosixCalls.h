#pragma once

/// \file
/// Calls of other platforms, so that tests that use them compile. What exists here under another name works; any other
/// call ends the test as failed. scripts/windows-left-out names the tests that cannot run for that reason.

#include <fcntl.h>
#include <io.h>
#include <process.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/types.h>

#include <cerrno>
#include <csignal>
#include <cstdio>

using uid_t = unsigned int;
using gid_t = unsigned int;

#ifndef EDQUOT
#define EDQUOT 122
#endif
#ifndef SIGKILL
#define SIGKILL 9
#endif
#ifndef O_CLOEXEC
#define O_CLOEXEC _O_NOINHERIT
#endif

namespace testing_host {

template <class Result = int>
[[noreturn]] Result failMissingCall(const char* name) {
    std::fprintf(stderr, "This platform has no %s\n", name);
    std::abort();
}

} // namespace testing_host

inline int setenv(const char* name, const char* value, int /*overwrite*/) {
    return ::_putenv_s(name, value);
}
inline int unsetenv(const char* name) {
    return ::_putenv_s(name, "");
}
inline int pipe(int* ends) {
    return ::_pipe(ends, 65536, _O_BINARY);
}

inline pid_t fork() {
    return testing_host::failMissingCall<pid_t>("fork");
}
inline int kill(pid_t /*process*/, int /*number*/) {
    return testing_host::failMissingCall("kill");
}
inline int pause() {
    return testing_host::failMissingCall("pause");
}
inline pid_t waitpid(pid_t /*process*/, int* /*status*/, int /*options*/) {
    return testing_host::failMissingCall<pid_t>("waitpid");
}
template <class Character>
int mkfifo(const Character* /*path*/, mode_t /*mode*/) {
    return testing_host::failMissingCall("mkfifo");
}
template <class Character>
int chown(const Character* /*path*/, uid_t /*user*/, gid_t /*group*/) {
    return testing_host::failMissingCall("chown");
}
template <class Character>
int lchown(const Character* /*path*/, uid_t /*user*/, gid_t /*group*/) {
    return testing_host::failMissingCall("lchown");
}
inline uid_t geteuid() {
    return testing_host::failMissingCall<uid_t>("geteuid");
}
