#pragma once

#include "output/Findings.h"
#include "output/Printer.h"

#include <kyr/FileAccess.h>

#include <string>

namespace lumora_config {

/// Examines a profile on the disk: its directories, the lock, every protected file, the files moved aside, the keys and
/// the policy files. Needs no plug-in and changes no setting. The directories of the host must be set. Main thread.
class Doctor {
public:
    /// Whether this process holds the lock of the profile.
    enum class Lock { Held, NotHeld };

    /// Whether the report names the owners of the files.
    enum class Owners { Named, Masked };

    explicit Doctor(Lock lockState, Owners ownerForm = Owners::Named);

    HealthReport examine();
    /// Adds to a report what only the client that writes the file knows; `state` is what is not on the disk.
    static void addWrites(HealthReport& report, const std::string& path, const std::string& state);

private:
    void examineDirectories();
    void examineLock();
    void examineDefaults();
    void examineProtectedFiles();
    void examineMovedAside();
    void examineKeys();
    void examinePolicies(const std::string& folder);
    void add(const std::string& area, const std::string& path, const std::string& state, bool needsAttention);
    /// Adds an item with owner and mode. It needs attention if `forbidden` is true of its access.
    void addExisting(const std::string& area, const std::string& path, const std::string& state, bool needsAttention,
                     bool KyrCoreUtils::FileAccess::*forbidden);

    const Lock lock;
    const Owners owners;
    const std::string configDirectory;
    HealthReport report;
};

/// Prints one line that names the protected files that are unreadable, damaged or encrypted with another key, and the
/// files that this run or an earlier one has moved aside. Prints nothing if there are none.
void showHealthNotice(const std::string& configDirectory, Printer& printer);

} // namespace lumora_config
