#pragma once

#include "featuresets/adapters/config/stores/StoreTable.h"
#include "table/FoldedKey.h"
#include "table/KeyList.h"

#include <ConfigStore.h>

#include <memory>
#include <string>

namespace ZelUnified {

/// A store in the chain, with the fastest way to call it: the table of a store of this library receives the folded key,
/// any other store is called through ConfigStore. Constant, like the chain that contains it.
class ChainLink {
public:
    explicit ChainLink(std::shared_ptr<ConfigStore> linkedStore);

    /// Returns false only if getValue() would return false and clear its value. A walk of the chain skips these stores:
    /// most of them do not contain the key, and the calls would make the walk a quarter longer.
    bool mayAnswer(const FoldedKey& key) const noexcept { return table == nullptr || table->mayAnswer(key); }
    /// Behaves like ConfigStore::getValue(). `key` must not refer to `value`.
    bool getValue(const FoldedKey& key, std::wstring& value) const;
    std::wstring getWideName() const;
    KeyList listKeys() const;

    const std::shared_ptr<ConfigStore>& getStore() const noexcept { return store; }
    ConfigStore* operator->() const noexcept { return store.get(); }

private:
    std::shared_ptr<ConfigStore> store;
    StoreTable* table;               ///< The store's; null for a store of another service.
    std::wstring nameOfLibraryStore; ///< The name of a store of this library never changes.
};

} // namespace ZelUnified
