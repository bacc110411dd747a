#pragma once

#include <ConfigMap.h>
#include <XmlConfigStore.h>

namespace ZelUnified {

/// The copy of another store that is kept on disk for the next run, in a protected file. It survives a stop and a
/// refresh.
class LUMORA_CONFIG_API CacheConfigStore : public XmlConfigStore {
public:
    /// Reads the copy.
    CacheConfigStore(std::string storeName, int storePriority, std::string file);
    /// Makes the copy: takes the pairs, writes the file at once on the caller's thread, and empties `contents`.
    CacheConfigStore(std::string storeName, int storePriority, std::string file, ConfigMap& contents);
    ~CacheConfigStore() override;

    /// Holds the lock for the whole write: readers of what is held wait for the disk.
    void persistValues() override;

    const std::type_info& getIndexedType() const override { return typeid(CacheConfigStore); }
};

} // namespace ZelUnified
