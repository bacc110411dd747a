#pragma once

#include <zel/FileLayer.h>

namespace zel::storage {

/// Implements the file operations with system calls. Stateless.
class PosixFileLayer final : public FileLayer {
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
    int syncDirectory(const std::string& path) override;
    int lockDirectory(const std::string& path, std::chrono::milliseconds timeout, Handle& handle) override;
};

} // namespace zel::storage
