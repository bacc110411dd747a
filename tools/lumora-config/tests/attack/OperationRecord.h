#pragma once

#include <initializer_list>
#include <mutex>
#include <string>
#include <string_view>

namespace attack {

/// Records what this process does to the files below one folder, and what it prints, in the order in which the system
/// did it, so that a script can compute what a power cut at any moment would leave. The environment configures it:
///
///     LUMORA_FAULT_FOLDER   the folder of FaultPlan
///     LUMORA_FAULT_RECORD   a file outside the folder that receives the lines; nothing is recorded if it is not set
///
/// Each line has an operation and its arguments, separated by tabs; bytes are in hexadecimal digits:
///
///     create PATH           truncate PATH SIZE    write PATH OFFSET BYTES      sync PATH
///     mkdir PATH            sync-directory PATH   unlink PATH (also rmdir)
///     rename FROM TO        link FROM TO          output BYTES
///
/// Only operations that succeeded are recorded, except output, which is recorded before it is written. Thread-safe.
class OperationRecord {
public:
    /// Returns the record of this process. Never destroyed, because other libraries write in their destructors.
    static OperationRecord& get();

    bool isActive() const { return !file.empty(); }
    /// Acquires the lock under which a caller makes an operation and adds it.
    std::unique_lock<std::mutex> lock() { return std::unique_lock(mutex); }
    /// Appends one line. Call it with the lock. Leaves errno undefined.
    void add(std::initializer_list<std::string_view> words) const;

    static std::string toHex(const void* bytes, std::size_t size);

    OperationRecord(const OperationRecord&) = delete;
    OperationRecord& operator=(const OperationRecord&) = delete;

private:
    OperationRecord();
    ~OperationRecord() = default;

    const std::string file;
    std::mutex mutex;
};

} // namespace attack
