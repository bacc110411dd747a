#include "FileHandle.h"

namespace zel::storage {

int FileHandle::close() {
    if (!handle) {
        return 0;
    }
    const int error = layer.close(*handle);
    handle.reset();
    return error;
}

} // namespace zel::storage
