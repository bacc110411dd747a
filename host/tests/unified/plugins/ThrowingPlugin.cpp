#include <unified/UnifiedFactory.h>

#include <memory>
#include <stdexcept>

extern "C" [[gnu::visibility("default")]] void InjectConfigService(std::shared_ptr<ZelUnified::UnifiedFactory>) {
    throw std::runtime_error("broken entry");
}
