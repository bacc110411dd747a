#include "InMemoryFileLayer.h"

namespace zel::storage {

FileLayer& FileLayer::platform() {
    const auto inMemory = InMemoryFileLayer::ofProcess();
    return inMemory ? *inMemory : disk();
}

} // namespace zel::storage
