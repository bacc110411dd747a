#pragma once

#include "host/ConfigHost.h"

#include <ConfigMap.h>
#include <ConfigStore.h>

#include <string>
#include <string_view>
#include <vector>

namespace lumora_config {

/// Reads back from the disk what a command has written, in the way the next start reads it. Each check first waits for
/// queued writes, and throws Failure (Environment) with what is not on the disk and why. Main thread.
class DiskCheck {
public:
    /// The host must outlive the check.
    explicit DiskCheck(const ConfigHost& configHost) : host(configHost) {}

    /// Checks that the user's file contains this value.
    void requireStored(const std::wstring& key, const std::wstring& value) const;
    /// Checks that the user's file contains all of these values. Reads it once.
    void requireAllStored(const ZelUnified::ConfigMap& values) const;
    /// Checks that the user's file contains none of these keys. `key` is the key as the user typed it.
    void requireRemoved(const std::string& key, const std::vector<std::wstring>& names) const;
    /// Checks that the copy of the store is on the disk with all values, and that the next start restores it.
    void requireCopy(ZelUnified::ConfigStore& store) const;
    /// Checks that the file of the provisioning settings contains the values of this store.
    void requireProvisioned(ZelUnified::ConfigStore& store) const;
    /// Checks that the record of cached copies in the user's file equals this text.
    void requireRecord(const std::wstring& record) const;
    /// Checks that no file exists at this path.
    void requireGone(const std::string& path) const;
    /// Checks that the file contains exactly these bytes.
    static void requireFile(const std::string& path, std::string_view content);
    /// Checks that the protected file can be read.
    void requireReadable(const std::string& path) const;
    /// Checks that the user's settings, the cached copies and the user's policy are deleted.
    void requireReset() const;

private:
    void requireCopyAt(const std::string& path, ZelUnified::ConfigStore& store) const;
    /// Throws Failure with the reason why the user's settings are not on the disk; `path` is the file that should
    /// contain them.
    [[noreturn]] void failForUser(const std::string& what) const;
    [[noreturn]] void failForFile(const std::string& what, const std::string& path) const;
    std::string getUserFile() const;
    std::string explainFile(const std::string& path) const;
    bool isVolatile() const;

    const ConfigHost& host;
};

} // namespace lumora_config
