#pragma once

#include "UnsyncedChanges.h"

#include <kyr/AnnotatedMutex.h>
#include <zel/FileLayer.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <limits>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace testing_host {

/// A file layer on the platform's files that can make chosen calls fail, write fewer bytes than requested, simulate a
/// full disk, and simulate a power cut that reverts unsynced changes. A failing call has no effect, except that a
/// handle is closed anyway. Any thread.
class FaultInjectingFileLayer final : public zel::storage::FileLayer {
public:
    enum class Operation {
        CreateFile,
        OpenForReading,
        Read,
        Write,
        Sync,
        Close,
        Rename,
        Link,
        Unlink,
        CreateDirectory,
        SyncDirectory,
        LockDirectory
    };

    /// Makes one later call fail once; 1 is the next call.
    void failAt(std::size_t call, int error);
    /// The same, but counts only the calls of one operation.
    void failAt(Operation operation, std::size_t call, int error);
    /// Makes that call and all later ones fail, as if the process had died.
    void dieAt(std::size_t call);
    /// Limits the number of bytes per write.
    void limitWrites(std::size_t bytes);
    /// Sets the free space of the disk. A write that exceeds it writes the bytes that fit; the next one fails.
    void setFreeSpace(std::size_t bytes);
    /// Calls `action` before each sync of a directory, with its path. Set it before other threads use the layer.
    void setBeforeSyncDirectory(std::function<void(const std::string&)> action) { beforeSync = std::move(action); }
    /// Removes all faults and limits set above, except the action.
    void heal();

    /// Returns all calls so far, including the failed ones.
    std::vector<Operation> getCalls() const;
    std::size_t countUnsyncedNames() const;
    /// Simulates a power cut: removes bytes that were not synced, and reverts all unsynced changes of names except the
    /// first `keptNames`. Then heals.
    void cutPower(std::size_t keptNames);

    int createFile(const std::string& path, Handle& handle) override;
    int openForReading(const std::string& path, Handle& handle, zel::storage::FileKind& kind,
                       std::uint64_t& size) override;
    int read(Handle handle, char* buffer, std::size_t room, std::size_t& count) override;
    int write(Handle handle, std::string_view bytes, std::size_t& count) override;
    int sync(Handle handle) override;
    int close(Handle handle) override;
    int rename(const std::string& from, const std::string& to) override;
    int link(const std::string& existing, const std::string& name) override;
    int unlink(const std::string& path) override;
    int createDirectory(const std::string& path) override;
    int syncDirectory(const std::string& path) override;
    int lockDirectory(const std::string& path, std::chrono::milliseconds timeout, Handle& handle) override;

private:
    struct Fault {
        std::size_t callsLeft;
        int error;
    };

    static constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();

    int enter(Operation operation) LUMORA_REQUIRES(mutex);
    int dropChangeIfFailed(int error) LUMORA_REQUIRES(mutex);
    void clearFaults() LUMORA_REQUIRES(mutex);

    zel::storage::FileLayer& real = zel::storage::FileLayer::disk();
    std::function<void(const std::string&)> beforeSync;
    mutable KyrCoreUtils::AnnotatedMutex<> mutex;
    std::vector<Operation> calls LUMORA_GUARDED_BY(mutex);
    std::vector<Fault> faults LUMORA_GUARDED_BY(mutex);
    std::map<Operation, std::vector<Fault>> operationFaults LUMORA_GUARDED_BY(mutex);
    std::size_t callsToLive LUMORA_GUARDED_BY(mutex) = unlimited;
    std::size_t writeLimit LUMORA_GUARDED_BY(mutex) = unlimited;
    std::size_t freeSpace LUMORA_GUARDED_BY(mutex) = unlimited;
    std::map<Handle, std::string> openForWriting LUMORA_GUARDED_BY(mutex);
    UnsyncedChanges unsynced LUMORA_GUARDED_BY(mutex);
};

} // namespace testing_host
