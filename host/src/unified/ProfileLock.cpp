#include "zel/ProfileDirectoryLock.h"
#include "zel/storage/PendingWrites.h"

#include <unified/ProfileLock.h>

#include <utility>

namespace ZelUnified {

using zel::platform::ProfileDirectoryLock;

ProfileLock::ProfileLock(const std::string& configDirectory, const std::string& stateDirectory)
    : directory(ProfileDirectoryLock::acquire(configDirectory, stateDirectory)) {}

ProfileLock::~ProfileLock() {
    if (isHeld()) {
        zel::storage::PendingWrites::instance().giveUp(directory->getPath());
    }
}

ProfileLock::Problem ProfileLock::findProblem(const std::string& configDirectory, const std::string& stateDirectory) {
    auto [text, isInUse] = ProfileDirectoryLock::findProblem(configDirectory, stateDirectory);
    return {std::move(text), isInUse};
}

bool ProfileLock::isHeld() const noexcept {
    return directory->isHeld();
}

long ProfileLock::getHolder() const noexcept {
    return directory->getHolder();
}

const std::string& ProfileLock::getProblem() const noexcept {
    return directory->getProblem();
}

} // namespace ZelUnified
