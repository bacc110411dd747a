#include "InMemoryFileLayer.h"

namespace zel::storage {

FileLayer& FileLayer::platform() {
    const auto inMemory = InMemoryFileLayer::getActive();
    return inMemory ? *inMemory : disk();
}

} // namespace zel::storage
