#pragma once

#include <ConfigServiceExport.h>

#include <string>
#include <typeinfo>

namespace ZelUnified {

class FoldedKey;
class KeyList;

/// What the library's own stores answer beside ConfigStore: a walk of the chain folds and hashes a key once and not in
/// every store, and a list of keys takes one piece of memory and not one for each. Their names never change. Stores of
/// other services have no part in it: they are asked through ConfigStore alone.
///
/// As the store's own operations: any thread, called with the chain's lock held.
class LUMORA_CONFIG_API IndexedStore {
public:
    /// Says what ConfigStore::getValue() says.
    virtual bool lookUp(const FoldedKey& key, std::wstring& value) = 0;
    /// The class for which lookUp() and listKeys() speak. A class derived from it may answer otherwise, and is then
    /// asked through ConfigStore, like any store of another service.
    virtual const std::type_info& getIndexedType() const = 0;
    /// Lists what ConfigStore::getKeys() lists.
    virtual KeyList listKeys() = 0;

protected:
    IndexedStore() = default;
    IndexedStore(const IndexedStore&) = default;
    IndexedStore& operator=(const IndexedStore&) = default;
    ~IndexedStore() = default;
};

} // namespace ZelUnified
