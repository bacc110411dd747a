#pragma once

#include <atomic>
#include <string>
#include <string_view>

namespace attack {

/// Decides which disk operation of this process fails. Only operations below one folder are counted. The environment
/// configures it:
///
///     LUMORA_FAULT_FOLDER   the folder, as an absolute path without links; nothing is counted if it is not set
///     LUMORA_FAULT_LOG      a file outside the folder; receives a line "NUMBER OPERATION PATH OUTCOME" per operation;
///                           nothing is logged if it is not set
///     LUMORA_FAULT_AT       the number of the operation that fails, from 1; 0 or not set: none
///     LUMORA_FAULT_MODE     "once": this operation fails; "always": this one and all later ones fail;
///                           "kill": the process is killed instead of this operation
///     LUMORA_FAULT_ERROR    the errno value of a failing operation
///
/// Thread-safe. Leaves errno undefined.
class FaultPlan {
public:
    enum class Outcome { Proceeds, Fails, Kills };

    /// Returns the plan of this process. Never destroyed, because other libraries write in their destructors.
    static FaultPlan& get();

    /// Counts and logs the operation and returns what becomes of it.
    Outcome next(std::string_view operation, std::string_view path);
    /// Returns true if the path is below the folder.
    bool covers(std::string_view path) const;
    int getError() const { return error; }

    FaultPlan(const FaultPlan&) = delete;
    FaultPlan& operator=(const FaultPlan&) = delete;

private:
    FaultPlan();
    ~FaultPlan() = default;
    Outcome decide(int number) const;
    void log(int number, std::string_view operation, std::string_view path, Outcome outcome) const;

    const std::string folder;
    const std::string logFile;
    const std::string mode;
    const int failing;
    const int error;
    std::atomic<int> count = 0;
};

} // namespace attack
