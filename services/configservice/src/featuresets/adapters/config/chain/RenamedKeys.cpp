#include "RenamedKeys.h"

#include <ConfigCatalogue.h>

#include <utility>

namespace ZelUnified {

RenamedKeys::RenamedKeys() {
    ConfigMap newNameOf;
    ConfigMap oldNameOf;
    for (const auto& row : ConfigKeys::keys) {
        if (row.isRenamed()) {
            newNameOf.emplace(row.oldName, row.name);
            oldNameOf.emplace(row.name, row.oldName);
        }
    }
    newNames = KeyNameMap(std::move(newNameOf));
    oldNames = KeyNameMap(std::move(oldNameOf));
}

} // namespace ZelUnified
