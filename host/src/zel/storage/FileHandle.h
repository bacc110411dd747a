#pragma once

#include <zel/FileLayer.h>

#include <optional>

namespace zel::storage {

/// Owns a handle of a file layer and closes it in the destructor.
class FileHandle {
public:
    FileHandle(FileLayer& owner, FileLayer::Handle opened) : layer(owner), handle(opened) {}
    ~FileHandle() { close(); }
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;

    FileLayer::Handle get() const { return *handle; }
    /// Closes the handle now. Returns 0 or an errno value; 0 if it is closed already.
    int close();

private:
    FileLayer& layer;
    std::optional<FileLayer::Handle> handle;
};

} // namespace zel::storage
