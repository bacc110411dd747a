#pragma once

#include "WipedBytes.h"

#include <kyr/AnnotatedMutex.h>
#include <zel/FileLayer.h>

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace zel::storage {

/// Keeps all changes of files and directories in memory and reports success. Its reads see these changes and, for all
/// other files, the layer below. Locks nothing. Contents are wiped when they are freed. Any thread; no other lock is
/// acquired under its mutex.
class LUMORA_HOST_API InMemoryFileLayer final : public FileLayer {
public:
    /// The layer below must outlive this one. It is only read.
    explicit InMemoryFileLayer(FileLayer& below) : disk(below) {}

    /// Returns the layer of this process; null if the process changes the disk.
    static std::shared_ptr<InMemoryFileLayer> getActive();
    /// Sets the layer of this process. FileLayer::platform(), FileUtils and EncryptFileUtils use it from now on.
    static void setActive(std::shared_ptr<InMemoryFileLayer> layer);

    /// Returns true if a file or a directory exists at the path, following links.
    bool exists(const std::string& path) const;
    /// Returns true if the file or directory at the path was created, moved or removed in memory.
    bool isChanged(const std::string& path) const;

    int createFile(const std::string& path, Handle& handle) override;
    int openForReading(const std::string& path, Handle& handle, FileKind& kind, std::uint64_t& size) override;
    int read(Handle handle, char* buffer, std::size_t room, std::size_t& count) override;
    int write(Handle handle, std::string_view bytes, std::size_t& count) override;
    int sync(Handle handle) override;
    int close(Handle handle) override;
    int rename(const std::string& from, const std::string& to) override;
    int link(const std::string& existing, const std::string& name) override;
    int unlink(const std::string& path) override;
    /// Unlike a layer on a disk, does not change the mode of an existing directory.
    int createDirectory(const std::string& path) override;
    int syncDirectory(const std::string& path) override;
    /// Returns a handle without a lock.
    int lockDirectory(const std::string& path, std::chrono::milliseconds timeout, Handle& handle) override;

private:
    using Content = std::shared_ptr<WipedText>;

    /// A file or a directory.
    struct Node {
        FileKind kind = FileKind::Regular;
        Content content;    ///< Null for a directory, and for a file whose content is on the disk.
        std::string onDisk; ///< The path of that content.

        bool operator==(const Node&) const = default;
    };
    struct OpenFile {
        std::optional<Handle> onDisk;
        Content content;
        std::size_t position = 0;
    };

    std::optional<Node> find(const std::string& spelled) const LUMORA_REQUIRES(mutex);
    int findForMove(const std::string& spelled, Node& node) const LUMORA_REQUIRES(mutex);
    bool hasParent(const std::string& spelled) const LUMORA_REQUIRES(mutex);
    int openOnDisk(const std::string& path, Handle& handle, FileKind& kind, std::uint64_t& size) LUMORA_REQUIRES(mutex);
    Handle add(OpenFile file) LUMORA_REQUIRES(mutex);

    FileLayer& disk;
    mutable KyrCoreUtils::AnnotatedMutex<> mutex;
    /// What differs from the disk, by the paths that spellPath() returns; nullopt for a removed file.
    std::map<std::string, std::optional<Node>> changes LUMORA_GUARDED_BY(mutex);
    std::map<Handle, OpenFile> openFiles LUMORA_GUARDED_BY(mutex);
    Handle lastHandle LUMORA_GUARDED_BY(mutex) = 0;
};

} // namespace zel::storage
