#pragma once

#include <zel/HostExport.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zel::storage {

enum class FileKind { Regular, Directory, Other };

/// The file operations on which durable writes and protected reads are built, so that a test can make each of them
/// fail. Each returns 0 or an errno value and never throws; interrupted system calls are restarted. Paths are UTF-8.
/// Any thread.
class LUMORA_HOST_API FileLayer {
public:
    using Handle = int;

    virtual ~FileLayer() = default;

    /// Returns the layer of this process: the disk, or memory while a host keeps its changes there
    /// (UnifiedFactoryOptions::changesInMemory). The reference is valid until that host is destroyed.
    static FileLayer& platform();
    /// Returns the platform's implementation, which always uses the disk.
    static FileLayer& disk();

    /// Creates a new file with mode 0600, regardless of the umask, and opens it for writing. Returns EEXIST if the name
    /// exists, even as a dangling link.
    virtual int createFile(const std::string& path, Handle& handle) = 0;
    /// Opens an existing file and follows links. Never blocks on a pipe.
    virtual int openForReading(const std::string& path, Handle& handle, FileKind& kind, std::uint64_t& size) = 0;
    /// Reads at most `room` bytes; may read fewer. 0 bytes mean the end of the file.
    virtual int read(Handle handle, char* buffer, std::size_t room, std::size_t& count) = 0;
    /// Writes at most all of `bytes`; may write fewer.
    virtual int write(Handle handle, std::string_view bytes, std::size_t& count) = 0;
    /// Returns after the file's bytes are on the disk.
    virtual int sync(Handle handle) = 0;
    virtual int close(Handle handle) = 0;

    /// Renames a file and replaces `to`. If both are hard links to one file, both remain.
    virtual int rename(const std::string& from, const std::string& to) = 0;
    /// Creates a second name for a file. Returns EEXIST if the name exists and EPERM for a directory.
    virtual int link(const std::string& existing, const std::string& name) = 0;
    virtual int unlink(const std::string& path) = 0;

    /// Creates the directory but not its parents, or uses an existing one. Sets its mode to 0700.
    virtual int createDirectory(const std::string& path) = 0;
    /// Returns after the directory's entries are on the disk; returns 0 on a platform without such a call. "" is the
    /// current directory.
    virtual int syncDirectory(const std::string& path) = 0;
    /// Waits until no other process or thread holds the directory's lock, and holds it until the handle is closed.
    /// Returns ETIMEDOUT if it is still held after `timeout`; a timeout of 0 tries once. If locks are not supported, no
    /// lock is held.
    virtual int lockDirectory(const std::string& path, std::chrono::milliseconds timeout, Handle& handle) = 0;
};

} // namespace zel::storage
