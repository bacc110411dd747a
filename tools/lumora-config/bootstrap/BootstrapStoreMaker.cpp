#include <BootstrapConfigStore.h>
#include <BootstrapExport.h>
#include <ConfigKeys.h>

#include <memory>
#include <string>

/// Creates the installer's store for a program that loads the service at run time and so cannot name its classes.
extern "C" LUMORA_BOOTSTRAP_API void LumoraMakeBootstrapStore(const std::string& file, int priority,
                                                              std::shared_ptr<ZelUnified::ConfigStore>& store) {
    store = std::make_shared<ZelUnified::BootstrapConfigStore>(
        std::string(ZelUnified::ConfigKeys::bootstrapConfigStore), file, priority);
}
