#pragma once

#include "table/FoldedKey.h"
#include "table/KeyList.h"

#include <ConfigStore.h>

#include <memory>
#include <string>

namespace ZelUnified {

class IndexedStore;

/// A store at its place in the chain, and the shortest way to ask it: a store of this library by a folded key, any
/// other one through ConfigStore. As constant as the chain that it is part of.
class ChainLink {
public:
    explicit ChainLink(std::shared_ptr<ConfigStore> linkedStore);

    /// As ConfigStore::getValue(). Not for keys that view `value`.
    bool getValue(const FoldedKey& key, std::wstring& value) const;
    std::wstring getWideName() const;
    KeyList listKeys() const;
    /// Whether it is a store of this library, to which it makes no difference how often it is asked.
    bool isIndexed() const noexcept { return indexed != nullptr; }

    ConfigStore* operator->() const noexcept { return store.get(); }

private:
    std::shared_ptr<ConfigStore> store;
    IndexedStore* indexed; ///< The same object; null for a store of another service.
    std::wstring indexedName;
};

} // namespace ZelUnified
