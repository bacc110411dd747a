#pragma once

#include "ConfigInspector.h"

#include <ConfigMap.h>

#include <cstddef>
#include <memory>
#include <string>

namespace inspection {

/// Explains every key of the chain in slices: first one store after the other, for its keys, then a few keys at a time.
/// Services dispatcher's thread.
class ChainReport {
public:
    ChainReport(std::shared_ptr<const ConfigInspector> configInspector, bool secretsShown);

    /// Does the next slice. Returns false if nothing is left.
    bool proceed();
    /// Returns the report; call it once, at the end.
    Json take() { return std::move(report); }

private:
    void addKeysOf(ZelUnified::ConfigStore& store);
    Json explain(const std::wstring& key) const;

    const std::shared_ptr<const ConfigInspector> inspector;
    const bool showSecrets;
    const ConfigInspector::Stores stores;
    std::size_t storesLeft; ///< Taken from the end of the chain.
    /// Each key under its new name, with the name to ask for: the old name if no store contains the new one.
    ZelUnified::ConfigMap asked;
    Json report;
};

} // namespace inspection
