#pragma once

#include <kyr/AnnotatedMutex.h>
#include <kyr/LockGuard.h>
#include <unified/TypeName.h>

#include <map>
#include <memory>
#include <string>
#include <utility>

namespace ZelUnified {

/// A registry of shared items, by the readable name of their interface and by id. Any thread. The two locks are
/// acquired one after the other, never nested, and no item is destroyed while one is held.
template <class Item>
class TypeMap {
public:
    /// Registers the item under the interface's name and under `id`. Replaces earlier items without a log line.
    template <class Interface>
    void registerItem(unsigned int id, std::shared_ptr<Interface> item) {
        std::shared_ptr<Item> replacedByName = item;
        std::shared_ptr<Item> replacedById = item;
        {
            const KyrCoreUtils::LockGuard lock(namesMutex);
            itemsByName[readableTypeName<Interface>()].swap(replacedByName);
        }
        {
            const KyrCoreUtils::LockGuard lock(idsMutex);
            itemsById[id].swap(replacedById);
        }
    }

    /// Returns the item registered under the interface's name; null if there is none or if it does not implement the
    /// interface.
    template <class Interface>
    std::shared_ptr<Interface> getItem() const {
        std::shared_ptr<Item> item;
        {
            const KyrCoreUtils::LockGuard lock(namesMutex);
            if (const auto found = itemsByName.find(readableTypeName<Interface>()); found != itemsByName.end()) {
                item = found->second;
            }
        }
        return std::dynamic_pointer_cast<Interface>(item);
    }

    std::shared_ptr<Item> getItem(unsigned int id) const {
        const KyrCoreUtils::LockGuard lock(idsMutex);
        const auto found = itemsById.find(id);
        return found == itemsById.end() ? nullptr : found->second;
    }

    std::map<unsigned int, std::shared_ptr<Item>> getAll() const {
        const KyrCoreUtils::LockGuard lock(idsMutex);
        return itemsById;
    }

    /// Removes all items and destroys them after the locks are released.
    void clear() {
        std::map<std::string, std::shared_ptr<Item>> names;
        std::map<unsigned int, std::shared_ptr<Item>> ids;
        {
            const KyrCoreUtils::LockGuard lock(namesMutex);
            names.swap(itemsByName);
        }
        {
            const KyrCoreUtils::LockGuard lock(idsMutex);
            ids.swap(itemsById);
        }
    }

private:
    mutable KyrCoreUtils::AnnotatedMutex<> namesMutex;
    std::map<std::string, std::shared_ptr<Item>> itemsByName LUMORA_GUARDED_BY(namesMutex);
    mutable KyrCoreUtils::AnnotatedMutex<> idsMutex;
    std::map<unsigned int, std::shared_ptr<Item>> itemsById LUMORA_GUARDED_BY(idsMutex);
};

} // namespace ZelUnified
