#pragma once

#include "ConfigHost.h"
#include "StoreRecord.h"

#include <ConfigStore.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace lumora_config {

/// Takes one store out of the chain, deletes its copy and its entry in the record of copies, and leaves the entries of
/// all other stores as they are. Main thread.
class StoreRemoval {
public:
    /// The host must outlive the removal. Throws Failure (NotFound), and nothing is changed, if there is no such store
    /// or the feature set is not started.
    StoreRemoval(const ConfigHost& configHost, const std::string& storeName);

    /// Throws Failure (Environment) if the copy or its record is still on the disk.
    void run();
    /// What has become of the store and its copy. After run().
    std::string describe() const;

private:
    void removeOnServices();
    void deleteCopies();
    bool isUsersStore() const;
    std::shared_ptr<ZelUnified::ConfigStore> findUsersStore() const;
    std::wstring readUsersRecord() const;

    const ConfigHost& host;
    std::string name; ///< As the store spells it.
    std::vector<std::string> copies;
    bool hadCopy = false;
    std::optional<std::wstring> remainingRecord; ///< Empty if the user's store is not in the chain.
};

} // namespace lumora_config
