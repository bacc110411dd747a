#include "zel/ProfileDirectoryLock.h"
#include "zel/storage/PendingWrites.h"

#include <unified/ProfileLock.h>

namespace ZelUnified {

ProfileLock::ProfileLock(const std::string& configDirectory, const std::string& stateDirectory)
    : directory(ProfileDirectoryLock::acquire(configDirectory, stateDirectory)) {}

ProfileLock::~ProfileLock() {
    if (isHeld()) {
        zel::storage::PendingWrites::instance().giveUp(directory->path);
    }
}

std::string ProfileLock::findProblem(const std::string& configDirectory, const std::string& stateDirectory) {
    return ProfileDirectoryLock::findProblem(configDirectory, stateDirectory);
}

bool ProfileLock::isHeld() const noexcept {
    return directory->held;
}

long ProfileLock::getHolder() const noexcept {
    return directory->holder;
}

const std::string& ProfileLock::getProblem() const noexcept {
    return directory->problem;
}

} // namespace ZelUnified
