#pragma once

#include "ChainLink.h"

#include <kyr/AnnotatedMutex.h>

#include <ConfigStore.h>

#include <memory>
#include <optional>
#include <string>
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

    /// What getName() and getPriority() of a store have returned.
    struct NameAndPriority {
        std::string name;
        int priority = 0;
    };

    /// Adds the store, unless one of that name (case-insensitive) is present. Calls getName() and getPriority() of each
    /// present store once, which matters in a chain of a thousand stores. Returns the names and priorities of all
    /// stores in the new order, or nothing if the store was not added.
    std::optional<std::vector<NameAndPriority>> addUnlessNameIsTaken(const std::shared_ptr<ConfigStore>& store,
                                                                     const std::string& name);
    void remove(const std::shared_ptr<ConfigStore>& store);

private:
    struct Chain {
        Stores stores;
        Links links;
    };
    struct NamedLink {
        NameAndPriority store;
        ChainLink link;
    };

    std::shared_ptr<const Chain> getChain() const;
    /// Returns the present links with the names of their stores, without priorities. Returns nothing if one of the
    /// stores has the name `taken` (case-insensitive).
    std::optional<std::vector<NamedLink>> findLinksUnlessNamed(std::string_view taken) const;
    void replace(Links next);

    /// Guards the pointer for readers without the owner's lock. No other function is called under it.
    mutable KyrCoreUtils::AnnotatedMutex<> chainMutex;
    std::shared_ptr<const Chain> chain LUMORA_GUARDED_BY(chainMutex) = std::make_shared<const Chain>();
};

} // namespace ZelUnified
