#pragma once

#include "ConfigInspector.h"

#include <memory>
#include <string>
#include <vector>

namespace inspection {

/// Removes one store from the chain, its copy, and its entry in the record of copies. The entries of all other stores
/// are unchanged. Call removeFromChain() on the services dispatcher's thread and then deleteCopies() on the background
/// dispatcher's, where the queued writes have been carried out.
class StoreRemoval {
public:
    /// Services dispatcher's thread. Throws RequestError (Refused) without changing anything if there is no such store.
    StoreRemoval(std::shared_ptr<const ConfigInspector> configInspector, const std::string& storeName);

    void removeFromChain();
    /// Throws RequestError (Environment) if a copy cannot be deleted.
    void deleteCopies() const;
    /// Returns true if the record of copies in the user's settings was changed.
    bool hasChangedRecord() const { return changedRecord; }
    /// Returns what happened to the store and its copy.
    std::string describe() const;

private:
    bool isUsersStore() const;
    std::shared_ptr<ZelUnified::ConfigStore> findUsersStore() const;
    std::wstring readUsersRecord() const;

    const std::shared_ptr<const ConfigInspector> inspector;
    std::string name; ///< In the spelling of the store.
    std::vector<std::string> copies;
    bool hadCopy = false;
    bool changedRecord = false;
};

} // namespace inspection
