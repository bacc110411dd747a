#pragma once

#include <zel/FileLayer.h>

#include <optional>

namespace zel::storage {

/// Closes a handle of a layer at the end of a scope.
class FileHandle {
public:
    FileHandle(FileLayer& owner, FileLayer::Handle opened) : layer(owner), handle(opened) {}
    ~FileHandle() { close(); }
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;

    FileLayer::Handle get() const { return *handle; }
    /// Closes it now; 0 when it was closed before.
    int close();

private:
    FileLayer& layer;
    std::optional<FileLayer::Handle> handle;
};

} // namespace zel::storage
