#pragma once

#include "ChainLink.h"

#include <kyr/AnnotatedMutex.h>

#include <ConfigStore.h>

#include <memory>
#include <string_view>
#include <vector>

namespace ZelUnified {

/// The stores in ascending order of priority; equal priorities keep their order of insertion. Each change replaces the
/// vector, so a walk is not affected when a callback changes the chain, and a reader holds the lock only while it
/// copies the pointer to the vector. The owner serialises changes.
class StoreChain {
public:
    using Stores = std::vector<std::shared_ptr<ConfigStore>>;
    using Links = std::vector<ChainLink>;

    /// Returns the current stores; never null.
    std::shared_ptr<const Stores> getStores() const;
    /// Returns the links to the same stores, for looking up keys; never null. The caller must hold the lock that
    /// serialises changes. Does not acquire `chainMutex`: no other thread can replace the pointer meanwhile, and every
    /// lookup of a key calls this.
    std::shared_ptr<const Links> getLinks() const LUMORA_NO_THREAD_SAFETY_ANALYSIS;

    /// Returns the store at that index, or null if `index` is past the end.
    std::shared_ptr<ConfigStore> at(std::size_t index) const;
    /// Returns the first store of that name (case-insensitive), or null if there is none.
    std::shared_ptr<ConfigStore> find(std::string_view name) const;

    void add(std::shared_ptr<ConfigStore> store);
    void remove(const std::shared_ptr<ConfigStore>& store);

private:
    struct Chain {
        Stores stores;
        Links links;
    };

    std::shared_ptr<const Chain> getChain() const;
    void replace(Stores next);

    /// Guards the pointer for readers without the owner's lock. No other function is called under it.
    mutable KyrCoreUtils::AnnotatedMutex<> chainMutex;
    std::shared_ptr<const Chain> chain LUMORA_GUARDED_BY(chainMutex) = std::make_shared<const Chain>();
};

} // namespace ZelUnified
