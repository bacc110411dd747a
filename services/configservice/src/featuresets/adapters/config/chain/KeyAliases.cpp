#include "KeyAliases.h"

#include <ConfigCatalogue.h>

#include <utility>

namespace ZelUnified {

KeyAliases::KeyAliases() {
    ConfigMap newNames;
    ConfigMap oldNames;
    for (const auto& row : ConfigKeys::keys) {
        if (row.isRenamed()) {
            newNames.emplace(row.oldName, row.name);
            oldNames.emplace(row.name, row.oldName);
        }
    }
    keyAliases = KeySuccessors(std::move(newNames));
    legacyKeys = KeySuccessors(std::move(oldNames));
}

} // namespace ZelUnified
