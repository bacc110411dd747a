#include "Quarantine.h"

#include "DurableFile.h"

#include <cerrno>

namespace zel::storage {

namespace {

/// The file system has no links, or none for this kind of file.
bool isWithoutLinks(int error) {
    return error == EPERM || error == ENOTSUP || error == ENOSYS || error == EMLINK;
}

} // namespace

int keepUnreadable(FileLayer& layer, const std::string& path) {
    const std::string kept = path + ".unreadable";
    const std::string temporary = DurableFile::makeTemporaryName(path);
    if (temporary.empty()) {
        return EIO;
    }
    const int linkError = layer.link(path, temporary);
    if (linkError == ENOENT) {
        return 0;
    }
    if (isWithoutLinks(linkError)) {
        return layer.rename(path, kept);
    }
    if (linkError != 0) {
        return linkError;
    }
    const int error = layer.rename(temporary, kept);
    // Also after success: a rename does nothing when an interrupted write had kept this very file already.
    layer.unlink(temporary);
    return error;
}

} // namespace zel::storage
