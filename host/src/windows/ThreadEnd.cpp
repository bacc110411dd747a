// Linked into each library and test that contains the static libcrypto. A shared one frees the data of a thread when
// the thread ends, among them the state of its random generator; a static one must be told.
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
