#pragma once

#include <ConfigServiceExport.h>

#include <limits>
#include <string>
#include <vector>

namespace ZelUnified {

/// One source of configuration: a name, a priority and a table of keys and values. Other services hand stores of their
/// own to ConfigFeatureSet::addConfigStore(); the order of the operations is contract.
///
/// Every operation may be called from any thread, and several at once; persistValues() comes from the background
/// dispatcher alone. A store guards its own table. It is called with the chain's lock held, so it must not wait for a
/// thread that reads or changes the chain.
class LUMORA_CONFIG_API ConfigStore {
public:
    virtual ~ConfigStore() = default;

    /// True and the value when the key is held, ignoring case; an empty string that is held is a hit. On a miss `value`
    /// is emptied and the result is false.
    virtual bool getValue(const std::wstring& key, std::wstring& value) = 0;
    /// Inserts or overwrites. False when the store takes no writes.
    virtual bool storeValue(const std::wstring& key, const std::wstring& value) = 0;
    /// All keys, in the order of the store's own table.
    virtual std::vector<std::wstring> getKeys() = 0;
    /// True when a key was removed.
    virtual bool removeValue(const std::wstring& key) = 0;
    virtual void removeAllValues() = 0;
    /// True: the store is an administrator's source. Decides who may be written and what `skipLocal` skips.
    virtual bool isReadOnly() = 0;
    /// The store's identity: two stores whose names are equal ignoring case are the same store. UTF-8.
    virtual std::string getName() = 0;
    /// A lower number comes first in the chain and wins.
    virtual int getPriority() = 0;
    /// Writes the table to its backing file, if it has one.
    virtual void persistValues() = 0;
    /// Releases what the store holds before the service ends.
    virtual void destroy() = 0;
    /// False: the store came from a server or the like, and a refresh drops it.
    virtual bool isLocal() = 0;
    /// Blocks until the store is ready.
    virtual bool waitForStoreReady() = 0;
    /// True asks for a copy on disk, which serves the next run until the store arrives again.
    virtual bool shouldCacheConfigStore() { return false; }
    /// The priority of that copy: directly behind the live store, unless the store wants another.
    virtual int getCachedPriority() {
        const int priority = getPriority();
        return priority == std::numeric_limits<int>::max() ? priority : priority + 1;
    }
};

} // namespace ZelUnified
