#pragma once

#include <ConfigMap.h>
#include <XmlConfigStore.h>

namespace ZelUnified {

/// A copy of another store, kept in a protected file for the next run. A stop and a refresh do not remove it.
class LUMORA_CONFIG_API CacheConfigStore : public XmlConfigStore {
public:
    /// Reads an existing copy.
    CacheConfigStore(std::string storeName, int storePriority, std::string file);
    /// Creates the copy: moves the pairs out of `contents`, which is empty afterwards, and writes the file immediately
    /// on the caller's thread.
    CacheConfigStore(std::string storeName, int storePriority, std::string file, ConfigMap& contents);
    ~CacheConfigStore() override;

    /// Holds the lock during the whole write, so lookups of keys that the store contains wait for the disk.
    void persistValues() override;
};

} // namespace ZelUnified
