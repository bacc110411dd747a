#pragma once

#include <unified/TypeName.h>

#include <map>
#include <memory>
#include <mutex>
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
            const std::lock_guard lock(namesMutex);
            itemsByName[readableTypeName<Interface>()].swap(replacedByName);
        }
        {
            const std::lock_guard lock(idsMutex);
            itemsById[id].swap(replacedById);
        }
    }

    /// Returns the item registered under the interface's name; null if there is none or if it does not implement the
    /// interface.
    template <class Interface>
    std::shared_ptr<Interface> getItem() const {
        std::shared_ptr<Item> item;
        {
            const std::lock_guard lock(namesMutex);
            if (const auto found = itemsByName.find(readableTypeName<Interface>()); found != itemsByName.end()) {
                item = found->second;
            }
        }
        return std::dynamic_pointer_cast<Interface>(item);
    }

    std::shared_ptr<Item> getItem(unsigned int id) const {
        const std::lock_guard lock(idsMutex);
        const auto found = itemsById.find(id);
        return found == itemsById.end() ? nullptr : found->second;
    }

    std::map<unsigned int, std::shared_ptr<Item>> getAll() const {
        const std::lock_guard lock(idsMutex);
        return itemsById;
    }

    /// Removes all items and destroys them after the locks are released.
    void clear() {
        std::map<std::string, std::shared_ptr<Item>> names;
        std::map<unsigned int, std::shared_ptr<Item>> ids;
        {
            const std::lock_guard lock(namesMutex);
            names.swap(itemsByName);
        }
        {
            const std::lock_guard lock(idsMutex);
            ids.swap(itemsById);
        }
    }

private:
    mutable std::mutex namesMutex;
    std::map<std::string, std::shared_ptr<Item>> itemsByName;
    mutable std::mutex idsMutex;
    std::map<unsigned int, std::shared_ptr<Item>> itemsById;
};

} // namespace ZelUnified
