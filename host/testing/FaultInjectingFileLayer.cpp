#include "FaultInjectingFileLayer.h"

#include <kyr/LockGuard.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>

namespace testing_host {

using zel::storage::FileKind;

namespace {

/// Counts one call. Returns the error of the fault that is due; 0 if there is none.
template <typename Faults>
int countCall(Faults& faults) {
    int error = 0;
    for (auto& fault : faults) {
        if (--fault.callsLeft == 0) {
            error = fault.error;
        }
    }
    std::erase_if(faults, [](const auto& fault) { return fault.callsLeft == 0; });
    return error;
}

} // namespace

void FaultInjectingFileLayer::failAt(std::size_t call, int error) {
    const KyrCoreUtils::LockGuard lock(mutex);
    faults.push_back({call, error});
}

void FaultInjectingFileLayer::failAt(Operation operation, std::size_t call, int error) {
    const KyrCoreUtils::LockGuard lock(mutex);
    operationFaults[operation].push_back({call, error});
}

void FaultInjectingFileLayer::dieAt(std::size_t call) {
    const KyrCoreUtils::LockGuard lock(mutex);
    callsToLive = call - 1;
}

void FaultInjectingFileLayer::limitWrites(std::size_t bytes) {
    const KyrCoreUtils::LockGuard lock(mutex);
    writeLimit = bytes;
}

void FaultInjectingFileLayer::setFreeSpace(std::size_t bytes) {
    const KyrCoreUtils::LockGuard lock(mutex);
    freeSpace = bytes;
}

void FaultInjectingFileLayer::heal() {
    const KyrCoreUtils::LockGuard lock(mutex);
    clearFaults();
}

void FaultInjectingFileLayer::clearFaults() {
    faults.clear();
    operationFaults.clear();
    callsToLive = writeLimit = freeSpace = unlimited;
}

std::vector<FaultInjectingFileLayer::Operation> FaultInjectingFileLayer::getCalls() const {
    const KyrCoreUtils::LockGuard lock(mutex);
    return calls;
}

std::size_t FaultInjectingFileLayer::countUnsyncedNames() const {
    const KyrCoreUtils::LockGuard lock(mutex);
    return unsynced.countNames();
}

void FaultInjectingFileLayer::cutPower(std::size_t keptNames) {
    const KyrCoreUtils::LockGuard lock(mutex);
    clearFaults();
    unsynced.revert(keptNames);
}

/// Records the call. Returns the error with which it must fail, or 0.
int FaultInjectingFileLayer::enter(Operation operation) {
    calls.push_back(operation);
    const int error = countCall(faults);
    const int operationError = countCall(operationFaults[operation]);
    if (callsToLive == 0) {
        return EIO;
    }
    if (callsToLive != unlimited) {
        --callsToLive;
    }
    return error != 0 ? error : operationError;
}

/// Removes the last recorded change if the operation failed.
int FaultInjectingFileLayer::dropChangeIfFailed(int error) {
    if (error != 0) {
        unsynced.dropLast();
    }
    return error;
}

int FaultInjectingFileLayer::createFile(const std::string& path, Handle& handle) {
    const KyrCoreUtils::LockGuard lock(mutex);
    if (const int error = enter(Operation::CreateFile); error != 0) {
        return error;
    }
    unsynced.creating(path);
    const int error = dropChangeIfFailed(real.createFile(path, handle));
    if (error == 0) {
        openForWriting[handle] = path;
    }
    return error;
}

int FaultInjectingFileLayer::openForReading(const std::string& path, Handle& handle, FileKind& kind,
                                            std::uint64_t& size) {
    const KyrCoreUtils::LockGuard lock(mutex);
    const int error = enter(Operation::OpenForReading);
    return error != 0 ? error : real.openForReading(path, handle, kind, size);
}

int FaultInjectingFileLayer::read(Handle handle, char* buffer, std::size_t room, std::size_t& count) {
    const KyrCoreUtils::LockGuard lock(mutex);
    const int error = enter(Operation::Read);
    return error != 0 ? error : real.read(handle, buffer, room, count);
}

int FaultInjectingFileLayer::write(Handle handle, std::string_view bytes, std::size_t& count) {
    const KyrCoreUtils::LockGuard lock(mutex);
    count = 0;
    if (const int error = enter(Operation::Write); error != 0) {
        return error;
    }
    if (freeSpace == 0 && !bytes.empty()) {
        return ENOSPC;
    }
    const int error = real.write(handle, bytes.substr(0, std::min(writeLimit, freeSpace)), count);
    if (freeSpace != unlimited) {
        freeSpace -= count;
    }
    unsynced.written(openForWriting[handle], count);
    return error;
}

int FaultInjectingFileLayer::sync(Handle handle) {
    const KyrCoreUtils::LockGuard lock(mutex);
    if (const int error = enter(Operation::Sync); error != 0) {
        return error;
    }
    unsynced.synced(openForWriting[handle]);
    return 0;
}

int FaultInjectingFileLayer::close(Handle handle) {
    const KyrCoreUtils::LockGuard lock(mutex);
    openForWriting.erase(handle);
    const int closed = real.close(handle);
    const int error = enter(Operation::Close);
    return error != 0 ? error : closed;
}

int FaultInjectingFileLayer::rename(const std::string& from, const std::string& to) {
    const KyrCoreUtils::LockGuard lock(mutex);
    if (const int error = enter(Operation::Rename); error != 0) {
        return error;
    }
    std::error_code ignored;
    if (std::filesystem::equivalent(from, to, ignored)) {
        return real.rename(from, to);
    }
    unsynced.renaming(from, to);
    return dropChangeIfFailed(real.rename(from, to));
}

int FaultInjectingFileLayer::link(const std::string& existing, const std::string& name) {
    const KyrCoreUtils::LockGuard lock(mutex);
    if (const int error = enter(Operation::Link); error != 0) {
        return error;
    }
    unsynced.linking(existing, name);
    return dropChangeIfFailed(real.link(existing, name));
}

int FaultInjectingFileLayer::unlink(const std::string& path) {
    const KyrCoreUtils::LockGuard lock(mutex);
    if (const int error = enter(Operation::Unlink); error != 0) {
        return error;
    }
    unsynced.unlinking(path);
    return dropChangeIfFailed(real.unlink(path));
}

int FaultInjectingFileLayer::createDirectory(const std::string& path) {
    const KyrCoreUtils::LockGuard lock(mutex);
    if (const int error = enter(Operation::CreateDirectory); error != 0) {
        return error;
    }
    if (std::filesystem::exists(path)) {
        return real.createDirectory(path);
    }
    unsynced.creatingDirectory(path);
    return dropChangeIfFailed(real.createDirectory(path));
}

int FaultInjectingFileLayer::syncDirectory(const std::string& path) {
    if (beforeSync) {
        beforeSync(path);
    }
    const KyrCoreUtils::LockGuard lock(mutex);
    if (const int error = enter(Operation::SyncDirectory); error != 0) {
        return error;
    }
    if (!std::filesystem::is_directory(path)) {
        return ENOENT;
    }
    unsynced.syncedDirectory(path);
    return 0;
}

int FaultInjectingFileLayer::lockDirectory(const std::string& path, std::chrono::milliseconds timeout, Handle& handle) {
    {
        const KyrCoreUtils::LockGuard lock(mutex);
        if (const int error = enter(Operation::LockDirectory); error != 0) {
            return error;
        }
    }
    return real.lockDirectory(path, timeout, handle);
}

} // namespace testing_host
