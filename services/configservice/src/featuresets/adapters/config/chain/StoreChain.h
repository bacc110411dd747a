#pragma once

#include "ChainLink.h"

#include <ConfigStore.h>

#include <memory>
#include <mutex>
#include <string_view>
#include <vector>

namespace ZelUnified {

/// The stores in ascending priority; equal priorities keep their order of arrival. Each change makes a new vector, so
/// that a walk goes on undisturbed when a callback changes the chain, and a reader needs no lock but the moment it
/// takes the vector. Changes are the owner's to serialise.
class StoreChain {
public:
    using Stores = std::vector<std::shared_ptr<ConfigStore>>;
    using Links = std::vector<ChainLink>;

    /// The chain as it stands; never null.
    std::shared_ptr<const Stores> getStores() const;
    /// The same stores, to be asked for keys; never null. For a caller that holds what serialises the changes.
    std::shared_ptr<const Links> getLinks() const;

    /// The store at that place; empty behind the end.
    std::shared_ptr<ConfigStore> at(std::size_t index) const;
    /// The first store of that name, ignoring case; empty when there is none.
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

    mutable std::mutex chainMutex; ///< Guards the pointer against readers without the owner's lock; nothing is called
                                   ///< under it.
    std::shared_ptr<const Chain> chain = std::make_shared<const Chain>();
};

} // namespace ZelUnified
