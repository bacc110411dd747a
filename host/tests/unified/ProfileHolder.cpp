// Holds the lock of a profile until it is killed or its input ends: profile_holder CONFIGURATION_DIRECTORY
// STATE_DIRECTORY
#include <unified/ProfileLock.h>

#include <iostream>

int main(int argc, char** argv) {
    if (argc != 3) {
        return 2;
    }
    const ZelUnified::ProfileLock lock(argv[1], argv[2]);
    std::cout << (lock.isHeld() ? 'y' : 'n') << std::flush;
    std::cin.get();
    return 0;
}
