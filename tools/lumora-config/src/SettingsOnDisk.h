#pragma once

#include <zel/StorageHealth.h>

#include <ConfigMap.h>

#include <string>
#include <vector>

namespace lumora_config {

/// What a protected file holds on the disk. The values are wiped at the end.
struct SettingsOnDisk {
    SettingsOnDisk() = default;
    ~SettingsOnDisk();
    SettingsOnDisk(SettingsOnDisk&&) = default;
    SettingsOnDisk& operator=(SettingsOnDisk&&) = default;
    SettingsOnDisk(const SettingsOnDisk&) = delete;
    SettingsOnDisk& operator=(const SettingsOnDisk&) = delete;

    zel::storage::ReadResult state = zel::storage::ReadResult::Absent;
    bool wellFormed = false; ///< The content is a document that the client can parse.
    ZelUnified::ConfigMap values;
};

/// Reads one file from the disk, never what the host keeps in memory for it.
SettingsOnDisk readSettings(const std::string& path);
/// Reads the user's settings as the next start does: from the backup if the file can't be read.
SettingsOnDisk readUserSettings(const std::string& configDirectory);

/// Returns the state of every protected file at and below the directory, the user's files included if something that is
/// no file has their names.
std::vector<zel::storage::ProtectedFileHealth> examineProtectedFiles(const std::string& configDirectory);

/// "good", "damaged", ...
std::string describe(zel::storage::ReadResult state);

/// `value` as a document keeps it: U+FFFD in place of the characters that XML cannot represent.
std::wstring asDocumentsKeepIt(const std::wstring& value);

} // namespace lumora_config
