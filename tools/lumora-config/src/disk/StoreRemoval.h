#pragma once

#include "host/ConfigHost.h"

#include <ConfigStore.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace lumora_config {

/// Removes one store from the chain, its copy, and its entry in the record of copies. The entries of all other stores
/// are unchanged. Main thread.
class StoreRemoval {
public:
    /// The host must outlive the removal. Throws Failure (NotFound) without changing anything if there is no such store
    /// or the feature set is not started.
    StoreRemoval(const ConfigHost& configHost, const std::string& storeName);

    /// Removes the store. Throws Failure (Environment) if the copy or its record is still on the disk afterwards.
    void run();
    /// Returns what happened to the store and its copy. Call after run().
    std::string describe() const;

private:
    void removeOnServices();
    void deleteCopies();
    bool isUsersStore() const;
    std::shared_ptr<ZelUnified::ConfigStore> findUsersStore() const;
    std::wstring readUsersRecord() const;

    const ConfigHost& host;
    std::string name; ///< In the spelling of the store.
    std::vector<std::string> copies;
    bool hadCopy = false;
    std::optional<std::wstring> remainingRecord; ///< Empty if the user's store is not in the chain.
};

} // namespace lumora_config
