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

void StoreChain::add(std::shared_ptr<ConfigStore> store) {
    // A store of another service may return a different priority each time, so the sort reads each priority once.
    std::vector<std::pair<int, std::shared_ptr<ConfigStore>>> ranked;
    for (const auto walked = getStores(); const auto& present : *walked) {
        ranked.emplace_back(present->getPriority(), present);
    }
    const int priority = store->getPriority();
    ranked.emplace_back(priority, std::move(store));
    std::stable_sort(ranked.begin(), ranked.end(), [](const auto& a, const auto& b) { return a.first < b.first; });

    Stores next;
    next.reserve(ranked.size());
    for (auto& [rank, present] : ranked) {
        next.push_back(std::move(present));
    }
    replace(std::move(next));
}

void StoreChain::remove(const std::shared_ptr<ConfigStore>& store) {
    Stores next = *getStores();
    std::erase(next, store);
    replace(std::move(next));
}

void StoreChain::replace(Stores next) {
    auto changed = std::make_shared<Chain>();
    changed->links.reserve(next.size());
    for (const auto& store : next) {
        changed->links.emplace_back(store);
    }
    changed->stores = std::move(next);
    std::shared_ptr<const Chain> replaced = std::move(changed); // destroyed after the lock is released
    const KyrCoreUtils::LockGuard lock(chainMutex);
    chain.swap(replaced);
}

} // namespace ZelUnified
