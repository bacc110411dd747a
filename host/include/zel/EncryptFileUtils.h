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

/// Each category has a master key of its own. DeviceData outlives a reset of the user's data.
enum FileCategory { DeviceData = 0, UserData = 2 };

} // namespace FileCategoryType

/// Files that are protected at rest. The physical name is the last path component with its extension replaced by
/// ".dat"; if there is no such file, a reader falls back to the named one. A reader follows a link to a regular file; a
/// writer replaces the link. Never throws. Any thread.
///
/// A write that fails logs an error with path and cause. Its content is kept, still protected, and written again: at
/// the next flush of the host's background dispatcher, after increasing delays, and when the host ends. A newer write
/// of the path replaces kept content; removing or moving the file through FileUtils drops it, and so do a reset of the
/// client (for user data) and the end of the profile's lock. Until the content is on the disk, reads of the path return
/// it. A retry never overwrites a newer write.
class LUMORA_HOST_API EncryptFileUtils {
public:
    /// False leaves `content` unchanged. True never returns empty content. Returns kept content, if there is any.
    static bool readDataFromFile(const std::string& path, ProtectedText& content,
                                 FileCategoryType::FileCategory category);
    /// The same, with the kind of failure.
    static ReadResult readData(const std::string& path, ProtectedText& content,
                               FileCategoryType::FileCategory category);
    /// Reads what the disk holds, never kept content. For reading back after a write.
    static ReadResult readFromDisk(const std::string& path, ProtectedText& content,
                                   FileCategoryType::FileCategory category);

    /// Replaces the file as a whole or leaves the old one unchanged; returns true once the new one is on the disk. A
    /// failed write is kept and retried (see above). Refuses empty content, which changes nothing. Fails for content
    /// that would make the file longer than readers accept. A file that can't be read is kept as "NAME.unreadable" or
    /// a numbered name before it is replaced. The directory must exist.
    static bool writeDataToFile(const std::string& path, const ProtectedText& content,
                                FileCategoryType::FileCategory category);

    /// Writes all kept content now. Returns true if nothing is left to be written.
    static bool retryPendingWrites();

    /// Examines the protected files at and below `configDirectory` on the disk and those that this process wrote there.
    /// A file that ends in ".dat" is one if the client has a protected file of its name ("lumoraLocalConfig.dat",
    /// "lumoraLocalConfig_backup.dat", "Cache/cached...") or if it begins with the header of the format. Reads every
    /// file whole; changes nothing.
    static StorageHealth health(const std::string& configDirectory);
    /// Returns the files at and below `directory` that were moved aside, by any process, newest last for each original.
    static std::vector<KeptFile> listMovedAside(const std::string& directory);
    /// Moves aside every protected file, as in health(), that is damaged, empty or encrypted with another key than the
    /// present one, each with a log line. A file that can't be opened, or whose key can't, stays. So do the files of
    /// other programs. Call it only with the profile open for writing and before anything reads the files. Returns what
    /// this process moved.
    static std::vector<MovedFile> moveAsideUnusable(const std::string& configDirectory);
    /// Puts a file of listMovedAside() back in its original place. A file that stands there is moved aside first.
    /// Kept content for the path is dropped. Fails and changes nothing if `keptAs` can't be read.
    static WriteOutcome restoreMovedAside(const std::string& keptAs);

    /// Replaces the platform's files for an embedding program or a test; nullptr restores them. Forgets kept content
    /// and the outcomes of writes, because they belong to the replaced layer.
    static void overrideFileLayer(std::shared_ptr<FileLayer> layer);
    /// Replaces the key files; nullptr restores them.
    static void overrideKeyProvider(std::shared_ptr<KeyProvider> provider);
};

} // namespace zel::storage
