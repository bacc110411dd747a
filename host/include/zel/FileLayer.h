#pragma once

#include <zel/HostExport.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zel::storage {

enum class FileKind { Regular, Directory, Other };

/// The file operations that durable writes and protected reads are made of, so that a test can let each of them fail.
/// All answer 0 or an errno value and never throw; interrupted calls are resumed. Paths are UTF-8. Any thread.
class LUMORA_HOST_API FileLayer {
public:
    using Handle = int;

    virtual ~FileLayer() = default;

    /// The platform's own.
    static FileLayer& platform();

    /// Makes a new file of mode 0600, whatever the umask, and opens it for writing. EEXIST when the name is taken, by a
    /// dangling link too.
    virtual int createFile(const std::string& path, Handle& handle) = 0;
    /// Opens what stands there; links are followed. Never blocks on a pipe.
    virtual int openForReading(const std::string& path, Handle& handle, FileKind& kind, std::uint64_t& size) = 0;
    /// May give fewer bytes than there is room for; 0 bytes is the end.
    virtual int read(Handle handle, char* buffer, std::size_t room, std::size_t& count) = 0;
    /// May take fewer bytes than it is given.
    virtual int write(Handle handle, std::string_view bytes, std::size_t& count) = 0;
    /// Returns once the file's bytes are on the disk.
    virtual int sync(Handle handle) = 0;
    virtual int close(Handle handle) = 0;

    /// Replaces `to`. Two names of one file stay as they are.
    virtual int rename(const std::string& from, const std::string& to) = 0;
    /// Gives a file a second name; EEXIST when the name is taken.
    virtual int link(const std::string& existing, const std::string& name) = 0;
    virtual int unlink(const std::string& path) = 0;

    /// Makes the directory, not its parents, or takes the one that stands there; its mode is 0700 afterwards.
    virtual int createDirectory(const std::string& path) = 0;
    /// Returns once the directory's names are on the disk; 0 where the platform has no such call. "" is the current
    /// one.
    virtual int syncDirectory(const std::string& path) = 0;
    /// Waits until no other process or thread holds the directory, and holds it until the handle is closed. Returns
    /// ETIMEDOUT if it is still held after `timeout`; 0 tries once. Where locks are not supported it holds nothing.
    virtual int lockDirectory(const std::string& path, std::chrono::milliseconds timeout, Handle& handle) = 0;
};

} // namespace zel::storage
