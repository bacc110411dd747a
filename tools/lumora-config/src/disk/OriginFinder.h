#pragma once

#include "output/Findings.h"
#include "stores/KeyPlaces.h"
#include "stores/StoreArrivals.h"

#include <ConfigFeatureSet.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace lumora_config {

/// Finds the origin of values: the line of the file from which a store reads a key, or how and when the value arrived.
/// Reads the files again when it is asked, each one once, so use a new finder for each question. The file may have
/// changed since the store has read it; then the line is that of the present file. Main thread.
class OriginFinder {
public:
    /// The arrivals must outlive the finder.
    OriginFinder(std::shared_ptr<ZelUnified::ConfigFeatureSet> adapter, const StoreArrivals& knownArrivals,
                 std::string directory);

    /// Finds the origins of values of a running client, which has these stores. What arrived in the memory of the
    /// client has an origin that says so.
    OriginFinder(const std::vector<StoreFacts>& listed, std::string directory);

    /// Returns the origin of the value that the store holds under exactly this name of the key.
    Origin find(const std::string& storeName, const std::wstring& name);
    /// Sets the origin of the reading of a key.
    void locate(const std::wstring& key, Reading& reading);
    /// Sets the origins of all values.
    void locate(Explanation& explanation);

private:
    /// What is known about one store.
    struct StoreOrigins {
        std::shared_ptr<ZelUnified::ConfigStore> store; ///< Null for a store of a running client.
        KeyPlaces places;
        Origin others; ///< The origin of keys without a place; also sets `how` and `when` of the others.
    };

    const StoreOrigins& originsOf(const std::string& storeName);
    StoreOrigins read(const std::string& storeName) const;
    bool mayBeCopy(const std::string& storeName, ZelUnified::ConfigStore* store) const;
    void readArrival(const StoreArrivals::Arrival& arrival, StoreOrigins& origins) const;
    void readCopy(const std::string& storeName, StoreOrigins& origins) const;
    KeyPlaces readUsersFile() const;
    KeyPlaces readDefaults() const;

    const std::shared_ptr<ZelUnified::ConfigFeatureSet> featureSet; ///< Null for a running client.
    const StoreArrivals* const arrivals;                            ///< Null for a running client.
    const std::string configDirectory;
    std::map<std::string, bool> clientsStores; ///< Whether each store is local.
    std::map<std::string, StoreOrigins> stores;
};

} // namespace lumora_config
