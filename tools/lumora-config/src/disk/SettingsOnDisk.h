#pragma once

#include <zel/StorageHealth.h>

#include <ConfigMap.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace lumora_config {

/// The content of a protected file on the disk. The destructor wipes the values.
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

/// Reads and decrypts one file from the disk, never the copy that the host holds in memory. Calls `use` with its
/// content unless it is unreadable or empty; the content is wiped afterwards.
zel::storage::ReadResult readDocument(const std::string& path, const std::function<void(std::string_view)>& use);
/// Reads one file from the disk, never the copy that the host holds in memory.
SettingsOnDisk readSettings(const std::string& path);
/// Reads the user's settings as the next start does: from the backup if the file is unreadable.
SettingsOnDisk readUserSettings(const std::string& configDirectory);

/// Returns the state of every protected file in and below the directory. Includes the user's files if something that is
/// not a file has their names.
std::vector<zel::storage::ProtectedFileHealth> examineProtectedFiles(const std::string& configDirectory);

/// Returns `value` as a document stores it: each character that XML cannot represent is replaced by U+FFFD.
std::wstring toStoredText(const std::wstring& value);

} // namespace lumora_config
