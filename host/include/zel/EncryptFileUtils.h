#pragma once

#include <zel/ProtectedText.h>
#include <zel/ReadResult.h>
#include <zel/StorageHealth.h>

#include <memory>
#include <string>
#include <vector>

namespace zel::storage {

class FileLayer;
class KeyProvider;

namespace FileCategoryType {

/// Each category has its own master key. DeviceData survives a reset of the user's data.
enum FileCategory { DeviceData = 0, UserData = 2 };

} // namespace FileCategoryType

/// Reads and writes files that are encrypted on disk. The physical name is the last path component with its extension
/// replaced by ".dat"; if that file does not exist, reads fall back to the path itself. Reads follow a link to a
/// regular file; writes replace the link. Never throws. Any thread.
///
/// A failed write logs an error with path and cause. The content is kept in memory, still protected, and written again:
/// on the next flush of the host's background dispatcher, after increasing delays, and when the host ends. A newer
/// write of the path replaces the pending content. Removing or moving the file through FileUtils drops it, as do a
/// reset of the client (for user data) and the release of the profile's lock. Until the content is on the disk, reads
/// of the path return it. A retry never overwrites a newer write.
class LUMORA_HOST_API EncryptFileUtils {
public:
    /// Reads the file, or its pending content if there is any. Returns true if `content` was set; it is then never
    /// empty. On failure returns false and leaves `content` unchanged.
    static bool readDataFromFile(const std::string& path, ProtectedText& content,
                                 FileCategoryType::FileCategory category);
    /// Like readDataFromFile(), but returns the kind of failure.
    static ReadResult readData(const std::string& path, ProtectedText& content,
                               FileCategoryType::FileCategory category);
    /// Reads the file on the disk, never pending content. Used to verify a write.
    static ReadResult readFromDisk(const std::string& path, ProtectedText& content,
                                   FileCategoryType::FileCategory category);

    /// Replaces the whole file, or leaves the old one unchanged. Returns true after the new file is on the disk. A
    /// failed write is kept and retried (see above). Rejects empty content without changing anything. Fails if the
    /// content would make the file longer than reads accept. An unreadable file is kept as "NAME.unreadable" or a
    /// numbered name before it is replaced. The directory must exist.
    static bool writeDataToFile(const std::string& path, const ProtectedText& content,
                                FileCategoryType::FileCategory category);

    /// Writes all pending content now. Returns true if no content is pending afterwards.
    static bool retryPendingWrites();

    /// Checks the protected files at and below `configDirectory` on the disk and those that this process wrote there. A
    /// file that ends in ".dat" is a protected file if its name is one of the client's ("lumoraLocalConfig.dat",
    /// "lumoraLocalConfig_backup.dat", "Cache/cached...") or if it begins with the header of the format. Reads every
    /// file completely; changes nothing.
    static StorageHealth health(const std::string& configDirectory);
    /// Returns the files at and below `directory` that any process moved aside, oldest first for each original.
    static std::vector<KeptFile> listMovedAside(const std::string& directory);
    /// Moves aside every protected file, as in health(), that is damaged, empty or encrypted with another key than the
    /// current one, and logs each. A file that cannot be opened, or whose key cannot be read, stays, as do the files of
    /// other programs. Call it only if the profile is open for writing, and before the first read of the files. Returns
    /// the files that this process moved.
    static std::vector<MovedFile> moveAsideUnusable(const std::string& configDirectory);
    /// Moves a file of listMovedAside() back to its original path. A file at that path is moved aside first. Drops
    /// pending content for the path. Fails and changes nothing if `keptAs` cannot be read.
    static WriteOutcome restoreMovedAside(const std::string& keptAs);

    /// Replaces the file layer, for an embedding program or a test; nullptr restores the platform's. Drops pending
    /// content and the outcomes of writes, because they belong to the replaced layer.
    static void overrideFileLayer(std::shared_ptr<FileLayer> layer);
    /// Replaces the key provider; nullptr restores the key files.
    static void overrideKeyProvider(std::shared_ptr<KeyProvider> provider);
};

} // namespace zel::storage
