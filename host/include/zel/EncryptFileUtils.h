#pragma once

#include <zel/ProtectedText.h>

#include <memory>
#include <string>

namespace zel::storage {

class FileLayer;
class KeyProvider;

namespace FileCategoryType {

/// Each category has a master key of its own. DeviceData outlives a reset of the user's data.
enum FileCategory { DeviceData = 0, UserData = 2 };

} // namespace FileCategoryType

/// Why a protected file could not be read.
enum class ReadResult {
    Ok,
    Absent,
    Unreadable, ///< No regular file, no access, over 64 MiB, or of a later version.
    WrongKey,   ///< Written under another key or category, or the key is gone.
    Damaged,    ///< Not in the facility's format, cut short, or changed since it was written.
    Empty       ///< In order, but without content.
};

/// Files that are protected at rest. The physical name is the last path component with its extension replaced by
/// ".dat"; where there is no such file, a reader falls back on the named one. A link to a regular file is followed by a
/// reader and replaced, not followed, by a writer. Never throws. Any thread; two writers on one path are the caller's
/// to keep apart.
class LUMORA_HOST_API EncryptFileUtils {
public:
    /// False leaves `content` alone. True never gives an empty content.
    static bool readDataFromFile(const std::string& path, ProtectedText& content,
                                 FileCategoryType::FileCategory category);
    /// The same, telling the failures apart.
    static ReadResult readData(const std::string& path, ProtectedText& content,
                               FileCategoryType::FileCategory category);

    /// Replaces the file as a whole or leaves the old one as it was; true once the new one is on the disk. Empty
    /// content is refused, and one that would make the file longer than readers take. A file that can't be read is kept
    /// beside as "NAME.unreadable" before it is replaced. The folder must exist.
    static bool writeDataToFile(const std::string& path, const ProtectedText& content,
                                FileCategoryType::FileCategory category);

    /// Puts others in the place of the platform's files and of the key files, for an embedding program or a test;
    /// nullptr restores.
    static void overrideFileLayer(std::shared_ptr<FileLayer> layer);
    static void overrideKeyProvider(std::shared_ptr<KeyProvider> provider);
};

} // namespace zel::storage
