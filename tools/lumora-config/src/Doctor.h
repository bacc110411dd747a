#pragma once

#include "Findings.h"

#include <string>

namespace lumora_config {

/// Examines a profile on the disk: its directories, the lock, every protected file, the files moved aside, the keys and
/// the policy files. It needs no plug-in and changes no setting. The host's directories must be settled. Main thread.
class Doctor {
public:
    /// Whether this process holds the profile's lock.
    enum class Lock { Held, NotHeld };

    explicit Doctor(Lock lockState);

    HealthReport examine();

private:
    void examineDirectories();
    void examineLock();
    void examineDefaults();
    void examineProtectedFiles();
    void examineMovedAside();
    void examineKeys();
    void examinePolicies(const std::string& folder);
    void add(const std::string& area, const std::string& path, const std::string& state, bool needsAttention);
    /// Adds owner and mode to the state. `harmfulMode` are the permissions that need attention.
    void addExisting(const std::string& area, const std::string& path, const std::string& state, bool needsAttention,
                     unsigned harmfulMode);

    const Lock lock;
    const std::string configDirectory;
    HealthReport report;
};

} // namespace lumora_config
