// Linked into the host, the plug-in and the tests of its classes: each contains a static libcrypto and uses its random
// generator on several threads. A shared libcrypto frees the data of a thread when the thread ends; a static one must
// be called.
#include <openssl/crypto.h>
#include <windows.h>

namespace {

void NTAPI freeDataOfThread(PVOID /*library*/, DWORD reason, PVOID /*reserved*/) {
    if (reason == DLL_THREAD_DETACH) {
        OPENSSL_thread_stop();
    }
}

// The system calls the functions in this section of a library or a program when a thread begins and ends.
[[gnu::section(".CRT$XLY"), gnu::used]] const PIMAGE_TLS_CALLBACK callback = freeDataOfThread;

} // namespace
