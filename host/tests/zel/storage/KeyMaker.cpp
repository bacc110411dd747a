// Waits for the end of its input, creates the key of the user's data in a folder and prints it: key_maker
// DATA_DIRECTORY
#include "zel/storage/FileKeyProvider.h"

#include <kyr/StandardStreams.h>

#include <iostream>

int main(int argc, char** argv) {
    if (argc != 2) {
        return 2;
    }
    using namespace zel::storage;
    FileKeyProvider provider(FileLayer::platform(), argv[1]);
    MasterKey key;
    std::cerr << "ready" << std::flush;
    std::cin.get();
    if (provider.findOrMake(FileCategoryType::UserData, key) != KeyResult::Found) {
        return 1;
    }
    const std::string_view bytes(reinterpret_cast<const char*>(key.data()), MasterKey::length);
    return KyrCoreUtils::StandardStreams::write(KyrCoreUtils::StandardStreams::Stream::Output, bytes);
}
