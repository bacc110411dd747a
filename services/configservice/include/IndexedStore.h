#pragma once

#include <ConfigServiceExport.h>

#include <string>
#include <typeinfo>

namespace ZelUnified {

class FoldedKey;
class KeyList;

/// The fast lookup of the library's own stores, beside ConfigStore. A walk of the chain folds and hashes a key once
/// instead of once in every store, and a list of keys needs one allocation instead of one for each key. The names of
/// these stores never change. Stores of other services do not implement this interface and are called through
/// ConfigStore alone.
///
/// Like the operations of ConfigStore: any thread, called with the chain's lock held.
class LUMORA_CONFIG_API IndexedStore {
public:
    /// Behaves like ConfigStore::getValue().
    virtual bool lookUp(const FoldedKey& key, std::wstring& value) = 0;
    /// Returns the class whose behaviour lookUp() and listKeys() implement. A class derived from it may behave
    /// differently, so the chain calls it through ConfigStore, like a store of another service.
    virtual const std::type_info& getIndexedType() const = 0;
    /// Returns the same keys as ConfigStore::getKeys().
    virtual KeyList listKeys() = 0;

protected:
    IndexedStore() = default;
    IndexedStore(const IndexedStore&) = default;
    IndexedStore& operator=(const IndexedStore&) = default;
    ~IndexedStore() = default;
};

} // namespace ZelUnified
