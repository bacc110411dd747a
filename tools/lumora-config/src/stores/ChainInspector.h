#pragma once

#include "StoreNames.h"
#include "output/Findings.h"

#include <ConfigFeatureSet.h>
#include <ConfigService.h>

#include <memory>
#include <string>
#include <vector>

namespace lumora_config {

/// Reads the chain through the public interfaces only: it asks for every store whose name it knows and sorts the stores
/// by priority. Does not mask secrets; the caller does. Services dispatcher's thread.
class ChainInspector {
public:
    using Stores = std::vector<std::shared_ptr<ZelUnified::ConfigStore>>;

    /// Construct it before the first foreign store is added, since it learns the names of stores from their arrival.
    ChainInspector(std::shared_ptr<ZelUnified::ConfigFeatureSet> adapter,
                   std::shared_ptr<ZelUnified::ConfigService> configService);
    ~ChainInspector();
    ChainInspector(const ChainInspector&) = delete;
    ChainInspector& operator=(const ChainInspector&) = delete;

    /// Returns the effective value or, for the administrator, the effective value without the user's stores.
    std::optional<Reading> read(const std::wstring& key, bool administratorsOnly = false) const;
    /// Returns the value of the key, under its new or old name, in one store. Throws Failure (NotFound) if there is no
    /// such store.
    std::optional<Reading> readStore(const std::string& storeName, const std::wstring& key) const;

    Explanation explain(const std::wstring& key) const;
    /// Returns every key in the stores, in the order of the new names.
    std::vector<Explanation> explainAll() const;
    /// Returns every defined record whose key begins with `prefix`, in key order.
    std::vector<ListedValue> list(const std::wstring& prefix) const;
    std::vector<StoreFacts> listStores() const;
    /// Returns the stores in chain order.
    Stores getStores() const;
    /// Adds a store name before the arrival of the store is announced.
    void expectStore(const std::string& name) { names->addIfNew(name); }

private:
    /// `facts` describes each of `stores`.
    Explanation explain(const std::wstring& key, const Stores& stores, const std::vector<StoreFacts>& facts) const;
    void collectNames() const;

    const std::shared_ptr<ZelUnified::ConfigFeatureSet> featureSet;
    const std::shared_ptr<ZelUnified::ConfigService> service;
    const std::shared_ptr<StoreNames> names;
};

} // namespace lumora_config
