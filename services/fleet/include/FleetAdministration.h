#pragma once

#include <ConfigMap.h>
#include <FleetServiceExport.h>
#include <WipedText.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ZelUnified {

/// How the members of a cluster are reached. All text is UTF-8.
struct FleetAccess {
    std::vector<std::string> endpoints; ///< "https://HOST:PORT", without a path.
    std::string authority;              ///< A file in PEM; empty for the authorities of the system.
    std::string clientCertificate;      ///< A file in PEM, like the key; both empty for none.
    std::string clientKey;              ///< Without a passphrase.
    std::string username;               ///< Empty for a cluster without authentication.
    WipedText password;
    bool plainHttpAllowed = false; ///< Also accepts "http://HOST:PORT".

    bool operator==(const FleetAccess&) const = default;
};

/// The clients that a pair applies to: everybody, one group or one user.
struct FleetAudience {
    enum class Kind { All, Group, User };

    Kind kind = Kind::All;
    std::string name; ///< Of the group or user.
};

/// One pair of the cluster. The key is that of the configuration; key and value may be any bytes.
struct FleetPair {
    FleetAudience audience;
    std::string key;
    std::string value;
};

/// Changes and shows the settings of a fleet. Each operation waits for the cluster, at most about ten seconds for each
/// request and endpoint (user and token may need two more requests), and throws std::runtime_error with one line of
/// text. Not thread-safe.
class FLEET_SERVICE_API FleetAdministration {
public:
    using Listener = std::function<void(ConfigMap settings)>;

    virtual ~FleetAdministration() = default;

    virtual void put(const FleetPair& pair) = 0;
    /// Returns false if there was no such key. Throws if the answer was lost: the key may have been removed then.
    virtual bool remove(const FleetAudience& audience, const std::string& key) = 0;
    /// Returns the key that equals `key` ignoring case, or nothing. If there are several spellings, returns the last
    /// one, which clients use. Reads all keys of the audience.
    virtual std::optional<std::string> findKey(const FleetAudience& audience, const std::string& key) = 0;
    /// Returns the pair whose key equals `key` ignoring case, or nothing. If there are several spellings, returns the
    /// last one, which clients use. Reads all keys of the audience and one value. The value is read after the keys:
    /// returns nothing if the key is removed between the two.
    virtual std::optional<FleetPair> find(const FleetAudience& audience, const std::string& key) = 0;
    /// Returns the pairs of the audiences, in this order, all at one revision.
    virtual std::vector<FleetPair> list(const std::vector<FleetAudience>& audiences) = 0;
    /// Calls `listener`, on another thread, with the settings that a client of these audiences has, the least specific
    /// one first: when they have been read, and after each change. Throws if the cluster cannot be read. Does not
    /// wait for the settings.
    virtual void watch(const std::vector<FleetAudience>& audiences, Listener listener) = 0;
    /// Ends it; the listener is not called afterwards. The destructor does so too.
    virtual void endWatch() = 0;
};

} // namespace ZelUnified

/// The function of the plug-in that creates the object, for a program that loads the plug-in without a host. Throws
/// std::runtime_error if the access cannot be used.
extern "C" FLEET_SERVICE_API void OpenFleetAdministration(const ZelUnified::FleetAccess& access,
                                                          std::unique_ptr<ZelUnified::FleetAdministration>& opened);
