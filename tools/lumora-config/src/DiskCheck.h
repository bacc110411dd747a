#pragma once

#include "ConfigHost.h"

#include <ConfigStore.h>

#include <string>
#include <string_view>
#include <vector>

namespace lumora_config {

/// Reads back from the disk what a command has written, as the next start will read it. Each check waits for queued
/// writes first and throws Failure (Environment), which says what is not on the disk and why. Main thread.
class DiskCheck {
public:
    /// The host must outlive the check.
    explicit DiskCheck(const ConfigHost& configHost) : host(configHost) {}

    /// The user's file holds this value.
    void requireStored(const std::wstring& key, const std::wstring& value) const;
    /// The user's file holds none of these keys. `key` is the one that the user named.
    void requireRemoved(const std::string& key, const std::vector<std::wstring>& names) const;
    /// The copy of the store is on the disk with all its values, and the next start restores it.
    void requireCopy(ZelUnified::ConfigStore& store) const;
    /// The file of the settings of a provisioning URL holds what this store holds.
    void requireProvisioned(ZelUnified::ConfigStore& store) const;
    /// The record of the cached copies in the user's file is this text.
    void requireRecord(const std::wstring& record) const;
    /// No file is left at this path.
    void requireGone(const std::string& path) const;
    /// The file holds these bytes.
    static void requireFile(const std::string& path, std::string_view content);
    /// The protected file can be read.
    void requireReadable(const std::string& path) const;
    /// The user's settings, the cached copies and the user's policy are gone.
    void requireReset() const;

private:
    void requireCopyAt(const std::string& path, ZelUnified::ConfigStore& store) const;
    /// What keeps the user's settings from the disk; `path` is the file in which they should be.
    [[noreturn]] void failForUser(const std::string& what) const;
    [[noreturn]] void failForFile(const std::string& what, const std::string& path) const;
    std::string getUserFile() const;
    std::string explainFile(const std::string& path) const;
    bool isVolatile() const;

    const ConfigHost& host;
};

} // namespace lumora_config
