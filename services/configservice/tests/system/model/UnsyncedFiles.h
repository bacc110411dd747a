#pragma once

#include <zel/EncryptFileUtils.h>
#include <zel/FileLayer.h>

#include <chrono>
#include <memory>
#include <string>

namespace config_model {

/// Makes protected writes skip syncs during its lifetime: thousands of sequences write files, and none is used by a
/// later process.
class UnsyncedFiles {
public:
    UnsyncedFiles() { zel::storage::EncryptFileUtils::overrideFileLayer(std::make_shared<Layer>()); }
    ~UnsyncedFiles() { zel::storage::EncryptFileUtils::overrideFileLayer(nullptr); }
    UnsyncedFiles(const UnsyncedFiles&) = delete;
    UnsyncedFiles& operator=(const UnsyncedFiles&) = delete;

private:
    class Layer final : public zel::storage::FileLayer {
    public:
        int createFile(const std::string& path, Handle& handle) override { return real.createFile(path, handle); }
        int openForReading(const std::string& path, Handle& handle, zel::storage::FileKind& kind,
                           std::uint64_t& size) override {
            return real.openForReading(path, handle, kind, size);
        }
        int read(Handle handle, char* buffer, std::size_t room, std::size_t& count) override {
            return real.read(handle, buffer, room, count);
        }
        int write(Handle handle, std::string_view bytes, std::size_t& count) override {
            return real.write(handle, bytes, count);
        }
        int sync(Handle) override { return 0; }
        int close(Handle handle) override { return real.close(handle); }
        int rename(const std::string& from, const std::string& to) override { return real.rename(from, to); }
        int link(const std::string& existing, const std::string& name) override { return real.link(existing, name); }
        int unlink(const std::string& path) override { return real.unlink(path); }
        int createDirectory(const std::string& path) override { return real.createDirectory(path); }
        int syncDirectory(const std::string&) override { return 0; }
        int lockDirectory(const std::string& path, std::chrono::milliseconds timeout, Handle& handle) override {
            return real.lockDirectory(path, timeout, handle);
        }

    private:
        zel::storage::FileLayer& real = platform();
    };
};

} // namespace config_model
