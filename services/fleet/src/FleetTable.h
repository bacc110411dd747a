#pragma once

#include "EtcdMessages.h"
#include "FleetScope.h"

#include <ConfigMap.h>

#include <map>
#include <set>
#include <string>
#include <vector>

namespace fleet {

/// The pairs of the scopes of one client, and the settings that follow from them. Not thread-safe.
class FleetTable {
public:
    static constexpr std::size_t maxKeys = 10000;
    static constexpr std::size_t maxBytes = std::size_t{16} << 20U; ///< Of all keys and values together.
    static constexpr std::size_t maxKeyBytes = 256;
    static constexpr std::size_t maxValueBytes = std::size_t{1} << 20U;

    /// The scopes: the least specific one first.
    explicit FleetTable(std::vector<FleetScope> clientScopes);

    /// Returns "" if the configuration can hold the pair, otherwise the reason.
    static std::string findPairProblem(const std::string& key, const std::string& value);

    void clear();
    /// Inserts, overwrites or erases the pair; removes blanks around its value. Ignores a key of another scope. A pair
    /// that the configuration cannot hold is absent from then on; the first time, a log line names its key.
    void apply(const etcd::Pair& pair);
    /// Returns true if there were more keys or bytes than the limits allow at any time since the last clear(). The
    /// table lacks pairs then, so its settings are incomplete even after deletions.
    bool isOverfull() const { return overfull; }
    /// Returns the settings: for each key the value of the most specific scope.
    ZelUnified::ConfigMap merge() const;

private:
    using Layer = std::map<std::string, std::string>;

    void erase(Layer& layer, const std::string& key);
    void reportSkipped(const etcd::Pair& pair, const std::string& reason);

    const std::vector<FleetScope> scopes;
    std::vector<Layer> layers; ///< One for each scope.
    std::size_t keyCount = 0;
    std::size_t byteCount = 0;
    bool overfull = false;
    std::set<std::string> reported;
};

} // namespace fleet
