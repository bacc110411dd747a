#include "StoreChain.h"

#include <kyr/LockGuard.h>
#include <kyr/StringUtils.h>

#include <algorithm>

namespace ZelUnified {

std::shared_ptr<const StoreChain::Chain> StoreChain::getChain() const {
    const KyrCoreUtils::LockGuard lock(chainMutex);
    return chain;
}

std::shared_ptr<const StoreChain::Stores> StoreChain::getStores() const {
    auto current = getChain();
    const auto* stores = &current->stores;
    return {std::move(current), stores};
}

std::shared_ptr<const StoreChain::Links> StoreChain::getLinks() const {
    return {chain, &chain->links};
}

std::shared_ptr<ConfigStore> StoreChain::at(std::size_t index) const {
    const auto current = getStores();
    return index < current->size() ? (*current)[index] : nullptr;
}

std::shared_ptr<ConfigStore> StoreChain::find(std::string_view name) const {
    const auto current = getStores();
    const auto found = std::find_if(current->begin(), current->end(), [&](const auto& store) {
        return KyrCoreUtils::caseInsensitiveStringEquals(store->getName(), name);
    });
    return found == current->end() ? nullptr : *found;
}

std::optional<std::vector<StoreChain::NameAndPriority>>
StoreChain::addUnlessNameIsTaken(const std::shared_ptr<ConfigStore>& store, const std::string& name) {
    auto links = findLinksUnlessNamed(name);
    if (!links) {
        return std::nullopt;
    }
    // A store of another service may return a different priority each time, so the sort reads each priority once.
    for (auto& present : *links) {
        present.store.priority = present.link->getPriority();
    }
    links->push_back({{name, store->getPriority()}, ChainLink(store)});
    std::stable_sort(links->begin(), links->end(),
                     [](const auto& a, const auto& b) { return a.store.priority < b.store.priority; });

    Links next;
    std::vector<NameAndPriority> stores;
    next.reserve(links->size());
    stores.reserve(links->size());
    for (auto& [nameAndPriority, link] : *links) {
        next.push_back(std::move(link));
        stores.push_back(std::move(nameAndPriority));
    }
    replace(std::move(next));
    return stores;
}

std::optional<std::vector<StoreChain::NamedLink>> StoreChain::findLinksUnlessNamed(std::string_view taken) const {
    std::vector<NamedLink> named;
    const auto current = getChain();
    named.reserve(current->links.size() + 1);
    for (const auto& link : current->links) {
        named.push_back({{link->getName()}, link});
        if (KyrCoreUtils::caseInsensitiveStringEquals(named.back().store.name, taken)) {
            return std::nullopt;
        }
    }
    return named;
}

void StoreChain::remove(const std::shared_ptr<ConfigStore>& store) {
    Links next = getChain()->links;
    std::erase_if(next, [&](const auto& link) { return link.getStore() == store; });
    replace(std::move(next));
}

void StoreChain::replace(Links next) {
    auto changed = std::make_shared<Chain>();
    changed->stores.reserve(next.size());
    for (const auto& link : next) {
        changed->stores.push_back(link.getStore());
    }
    changed->links = std::move(next);
    std::shared_ptr<const Chain> replaced = std::move(changed); // destroyed after the lock is released
    const KyrCoreUtils::LockGuard lock(chainMutex);
    chain.swap(replaced);
}

} // namespace ZelUnified
