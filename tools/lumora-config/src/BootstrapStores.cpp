#include "BootstrapStores.h"

#include "XmlSettings.h"

#include <filesystem>
#include <utility>

namespace lumora_config {

namespace {

using MakeStore = void (*)(const std::string&, int, std::shared_ptr<ZelUnified::ConfigStore>&);

} // namespace

BootstrapStores::BootstrapStores(std::string directory) : libraryDirectory(std::move(directory)) {}

std::shared_ptr<ZelUnified::ConfigStore> BootstrapStores::make(const BootstrapSpec& spec) {
    readWholeFile(spec.file);
    if (!library) {
        library.emplace((std::filesystem::path(libraryDirectory) / LUMORA_BOOTSTRAP_LIBRARY).string());
    }
    const auto makeStore = reinterpret_cast<MakeStore>(library->find("LumoraMakeBootstrapStore"));
    std::shared_ptr<ZelUnified::ConfigStore> store;
    makeStore(spec.file, spec.priority, store);
    return store;
}

} // namespace lumora_config
