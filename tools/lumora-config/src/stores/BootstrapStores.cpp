#include "BootstrapStores.h"

#include "XmlSettings.h"
#include "output/Failure.h"

#include <filesystem>
#include <utility>

namespace lumora_config {

namespace {

using MakeStore = void (*)(const std::string&, int, std::shared_ptr<ZelUnified::ConfigStore>&);

} // namespace

BootstrapStores::BootstrapStores(std::string directory) : libraryDirectory(std::move(directory)) {}

std::shared_ptr<ZelUnified::ConfigStore> BootstrapStores::make(const BootstrapSpec& spec) {
    readWholeFile(spec.file);
    const auto makeStore = reinterpret_cast<MakeStore>(findMaker());
    std::shared_ptr<ZelUnified::ConfigStore> store;
    makeStore(spec.file, spec.priority, store);
    return store;
}

void* BootstrapStores::findMaker() {
    try {
        if (!library) {
            library.emplace((std::filesystem::path(libraryDirectory) / LUMORA_BOOTSTRAP_LIBRARY).string());
        }
        return library->find("LumoraMakeBootstrapStore");
    } catch (const std::runtime_error& error) {
        throw Failure(ExitCode::Environment, error.what());
    }
}

} // namespace lumora_config
