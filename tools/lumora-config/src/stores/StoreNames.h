#pragma once

#include <ConfigStoreAddedObserver.h>

#include <mutex>
#include <string>
#include <vector>

namespace lumora_config {

/// The names that a store of the chain may bear, in the order in which such stores arrived: it breaks the tie between
/// stores of one priority. Any thread.
class StoreNames final : public ZelUnified::ConfigStoreAddedObserver {
public:
    /// Knows the names of the product's own stores, in the order in which it makes them.
    StoreNames();

    /// A store that arrives, or is replaced, stands behind its equals from then on.
    void OnConfigStoreAdded(const std::string& storeName) override;
    /// Enters a name unless it is known.
    void learn(const std::string& storeName);
    std::vector<std::string> getAll() const;

private:
    std::vector<std::string>::iterator find(const std::string& storeName);

    mutable std::mutex mutex;
    std::vector<std::string> names; ///< Guarded by `mutex`.
};

} // namespace lumora_config
