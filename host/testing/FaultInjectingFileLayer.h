#pragma once

#include "UnsyncedChanges.h"

#include <zel/FileLayer.h>

#include <chrono>
#include <cstddef>
#include <limits>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace testing_host {

/// The platform's files, with failures at chosen calls, writes that take a part, a disk that fills up, and a power cut
/// that takes back what was not synced. A call that fails does nothing, but a handle is closed all the same. Any
/// thread.
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

    /// The call that many calls from now, 1 is the next one, fails once.
    void failAt(std::size_t call, int error);
    /// The same among calls of one operation.
    void failAt(Operation operation, std::size_t call, int error);
    /// From that call on all fail, as if the process were gone.
    void dieAt(std::size_t call);
    /// No write takes more bytes than that at once.
    void limitWrites(std::size_t bytes);
    /// The disk takes that many bytes more; a write that does not fit takes what does, the next one fails.
    void setFreeSpace(std::size_t bytes);
    /// Ends all of the above.
    void heal();

    /// All calls so far, those that failed too.
    std::vector<Operation> getCalls() const;
    std::size_t countUnsyncedNames() const;
    /// The machine stops: bytes that were not synced are gone, and of the changes of names that were not, all but the
    /// first `keptNames`. Heals.
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

    int enter(Operation operation);
    int keep(int error);
    void clearFaults();

    zel::storage::FileLayer& real = zel::storage::FileLayer::platform();
    mutable std::mutex mutex;
    std::vector<Operation> calls;
    std::vector<Fault> faults;
    std::map<Operation, std::vector<Fault>> operationFaults;
    std::size_t callsToLive = unlimited;
    std::size_t writeLimit = unlimited;
    std::size_t freeSpace = unlimited;
    std::map<Handle, std::string> openForWriting;
    UnsyncedChanges unsynced;
};

} // namespace testing_host
