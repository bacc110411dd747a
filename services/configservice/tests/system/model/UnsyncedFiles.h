#pragma once

#include <zel/EncryptFileUtils.h>

#include <ForwardingFileLayer.h>

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
    class Layer final : public testing_host::ForwardingFileLayer {
    public:
        int sync(Handle) override { return 0; }
        int syncDirectory(const std::string&) override { return 0; }
    };
};

} // namespace config_model
