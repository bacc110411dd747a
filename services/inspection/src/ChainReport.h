#pragma once

#include "ConfigInspector.h"

#include <ConfigMap.h>

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace inspection {

/// Explains every key of the chain in slices: collects the keys of one store after the other, then explains them.
/// Services dispatcher's thread.
class ChainReport {
public:
    ChainReport(std::shared_ptr<const ConfigInspector> configInspector, bool secretsShown);

    /// Does the next slice. Returns false if nothing is left.
    bool proceed();
    /// Returns the report; call it once, at the end.
    Json extract() { return std::move(report); }

private:
    void beginStore(ZelUnified::ConfigStore& store);
    void addKeys();
    Json explain(const std::wstring& key) const;

    const std::shared_ptr<const ConfigInspector> inspector;
    const bool showSecrets;
    const ConfigInspector::Stores stores;
    std::size_t storesLeft;          ///< Taken from the end of the chain.
    std::vector<std::wstring> found; ///< Keys of the last store that are not in `asked` yet.
    /// Each key under its new name, with the name to ask for: the old name if no store contains the new one.
    ZelUnified::ConfigMap asked;
    Json report;
};

} // namespace inspection
