#pragma once

#include <zel/FileLayer.h>

namespace zel::storage {

/// Implements the file operations with wide calls. A handle is a descriptor of the C library. Every file is opened so
/// that others may read, rename and remove it meanwhile, as on other platforms. Stateless.
class WindowsFileLayer final : public FileLayer {
public:
    int createFile(const std::string& path, Handle& handle) override;
    int openForReading(const std::string& path, Handle& handle, FileKind& kind, std::uint64_t& size) override;
    int read(Handle handle, char* buffer, std::size_t room, std::size_t& count) override;
    int write(Handle handle, std::string_view bytes, std::size_t& count) override;
    int sync(Handle handle) override;
    int close(Handle handle) override;
    int rename(const std::string& from, const std::string& to) override;
    int link(const std::string& existing, const std::string& name) override;
    int unlink(const std::string& path) override;
    int createDirectory(const std::string& path) override;
    /// Does nothing: the system writes the names with the file.
    int syncDirectory(const std::string& path) override;
    /// Holds a file in the directory open alone. The system removes that file when the handle is closed.
    int lockDirectory(const std::string& path, std::chrono::milliseconds timeout, Handle& handle) override;
};

} // namespace zel::storage
