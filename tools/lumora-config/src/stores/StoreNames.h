#pragma once

#include <kyr/AnnotatedMutex.h>

#include <ConfigStoreAddedObserver.h>

#include <string>
#include <vector>

namespace lumora_config {

/// Holds the names of the stores in the chain in order of arrival. The order decides between stores of equal priority.
/// Any thread.
class StoreNames final : public ZelUnified::ConfigStoreAddedObserver {
public:
    /// Starts with the names of the product's own stores, in the order of their creation.
    StoreNames();

    /// Moves the store to the end of the order, whether it is new or replaced.
    void OnConfigStoreAdded(const std::string& storeName) override;
    /// Adds a name if it is not known yet.
    void addIfNew(const std::string& storeName);
    std::vector<std::string> getAll() const;

private:
    std::vector<std::string>::iterator find(const std::string& storeName) LUMORA_REQUIRES(mutex);

    mutable KyrCoreUtils::AnnotatedMutex<> mutex;
    std::vector<std::string> names LUMORA_GUARDED_BY(mutex);
};

} // namespace lumora_config
