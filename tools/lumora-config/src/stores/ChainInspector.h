#pragma once

#include "StoreNames.h"
#include "output/Findings.h"

#include <ConfigFeatureSet.h>
#include <ConfigService.h>

#include <memory>
#include <string>
#include <vector>

namespace lumora_config {

/// Finds out what the chain holds, through the public interfaces alone: it asks for every store whose name it knows and
/// puts them in the order of their priorities. Values are shown as they are; hiding secrets is the caller's.
/// Services dispatcher's thread.
class ChainInspector {
public:
    using Stores = std::vector<std::shared_ptr<ZelUnified::ConfigStore>>;

    /// To be made before the first foreign store is handed in, since it learns their names by watching them arrive.
    ChainInspector(std::shared_ptr<ZelUnified::ConfigFeatureSet> adapter,
                   std::shared_ptr<ZelUnified::ConfigService> configService);
    ~ChainInspector();
    ChainInspector(const ChainInspector&) = delete;
    ChainInspector& operator=(const ChainInspector&) = delete;

    /// The value in force, or the administrator's: the same reading without the user's stores.
    std::optional<Reading> read(const std::wstring& key, bool administratorsOnly = false) const;
    /// What one store says of the key, under either name. Throws Failure (NotFound) when there is no such store.
    std::optional<Reading> readStore(const std::string& storeName, const std::wstring& key) const;

    Explanation explain(const std::wstring& key) const;
    /// Every key that a store holds, in the order of their current names.
    std::vector<Explanation> explainAll() const;
    /// Every defined record whose key begins with `prefix`, in key order.
    std::vector<ListedValue> list(const std::wstring& prefix) const;
    std::vector<StoreFacts> listStores() const;
    /// The stores of the chain, in its order.
    Stores getStores() const;
    /// Looks for a store of this name from now on, before its arrival has been announced.
    void expectStore(const std::string& name) { names->learn(name); }

private:
    Explanation explain(const std::wstring& key, const Stores& stores) const;
    void learnNames() const;

    const std::shared_ptr<ZelUnified::ConfigFeatureSet> featureSet;
    const std::shared_ptr<ZelUnified::ConfigService> service;
    const std::shared_ptr<StoreNames> names;
};

} // namespace lumora_config
