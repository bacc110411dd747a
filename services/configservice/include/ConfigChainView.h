#pragma once

#include <ConfigServiceExport.h>
#include <ConfigStore.h>

#include <memory>
#include <vector>

namespace ZelUnified {

/// Lists the store chain, for services that inspect it. The feature set of the configuration service implements it
/// beside ConfigFeatureSet: obtain it by std::dynamic_pointer_cast. Any thread.
class LUMORA_CONFIG_API ConfigChainView {
public:
    virtual ~ConfigChainView() = default;

    /// Returns the stores in chain order. The chain may change after the call.
    virtual std::vector<std::shared_ptr<ConfigStore>> getConfigStores() = 0;
};

} // namespace ZelUnified
