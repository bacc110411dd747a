#pragma once

#include <ConfigServiceExport.h>

#include <limits>
#include <string>
#include <vector>

namespace ZelUnified {

/// A source of configuration: a name, a priority and a table of keys and values. Other services pass their own stores
/// to ConfigFeatureSet::addConfigStore(). The order of the operations is part of the contract.
///
/// Any thread may call every operation, several at once; only the background dispatcher's thread calls persistValues().
/// A store guards its own table. The chain calls stores with its lock held, so a store must not wait for a thread that
/// reads or changes the chain.
class LUMORA_CONFIG_API ConfigStore {
public:
    virtual ~ConfigStore() = default;

    /// Returns true and sets `value` if the store contains the key (case-insensitive), even if the value is an empty
    /// string. Otherwise returns false and clears `value`.
    virtual bool getValue(const std::wstring& key, std::wstring& value) = 0;
    /// Inserts or overwrites the value. Returns false if the store accepts no writes.
    virtual bool storeValue(const std::wstring& key, const std::wstring& value) = 0;
    /// Returns all keys, in the order of the store's own table.
    virtual std::vector<std::wstring> getKeys() = 0;
    /// Removes the key. Returns true if the store contained it.
    virtual bool removeValue(const std::wstring& key) = 0;
    virtual void removeAllValues() = 0;
    /// Returns true if the store belongs to an administrator. The chain writes only to the other stores, and
    /// `skipLocal` leaves those out.
    virtual bool isReadOnly() = 0;
    /// Returns the name, which identifies the store: two stores whose names are equal (case-insensitive) are the same
    /// store. UTF-8.
    virtual std::string getName() = 0;
    /// Returns the priority. The store with the lowest number comes first in the chain and wins.
    virtual int getPriority() = 0;
    /// Writes the table to its backing file, if it has one.
    virtual void persistValues() = 0;
    /// Releases the store's resources before the service ends.
    virtual void destroy() = 0;
    /// Returns false if the store came from a server or a similar source. A refresh removes such a store.
    virtual bool isLocal() = 0;
    /// Blocks until the store is ready.
    virtual bool waitForStoreReady() = 0;
    /// Returns true to request a copy on disk. The copy provides the values in the next run until the store arrives
    /// again.
    virtual bool shouldCacheConfigStore() { return false; }
    /// Returns the priority of that copy. The default places it directly behind the live store.
    virtual int getCachedPriority() {
        const int priority = getPriority();
        return priority == std::numeric_limits<int>::max() ? priority : priority + 1;
    }
};

} // namespace ZelUnified
