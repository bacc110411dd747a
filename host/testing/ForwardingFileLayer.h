#pragma once

#include <zel/FileLayer.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace testing_host {

/// Passes each call to the layer of this process. A test derives from it to change single operations. Any thread.
class ForwardingFileLayer : public zel::storage::FileLayer {
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
    int sync(Handle handle) override { return real.sync(handle); }
    int close(Handle handle) override { return real.close(handle); }
    int rename(const std::string& from, const std::string& to) override { return real.rename(from, to); }
    int link(const std::string& existing, const std::string& name) override { return real.link(existing, name); }
    int unlink(const std::string& path) override { return real.unlink(path); }
    int createDirectory(const std::string& path) override { return real.createDirectory(path); }
    int syncDirectory(const std::string& path) override { return real.syncDirectory(path); }
    int lockDirectory(const std::string& path, std::chrono::milliseconds timeout, Handle& handle) override {
        return real.lockDirectory(path, timeout, handle);
    }

private:
    zel::storage::FileLayer& real = platform();
};

} // namespace testing_host
