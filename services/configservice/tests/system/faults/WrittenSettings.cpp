#include "OtherWriter.h"

#include <LocalFileConfigStore.h>

#include <string>

namespace ZelUnified {

void writeSettings() {
    LocalFileConfigStore store("LocalFileConfigStore", 20, false);
    for (int round = 0; round < 100; ++round) {
        store.storeValue(L"k", L"theirs " + std::to_wstring(round));
        store.persistValues();
    }
}

} // namespace ZelUnified
