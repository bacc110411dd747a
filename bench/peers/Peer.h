#pragma once

#include <optional>
#include <string>

namespace bench {

/// One layer of keys in another library, read from a file that the library itself wrote. Keys are in lower case: most
/// of these libraries are case-sensitive, so the caller folds the key first.
class Peer {
public:
    virtual ~Peer() = default;
    Peer() = default;
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    /// Returns the value as text of the client, or nothing if the key does not exist.
    virtual std::optional<std::string> read(const std::string& key) = 0;

    /// Sets the value of an existing key. If the library reports changes, listeners have been called when this returns.
    virtual void set(const std::string& key, const std::string& value) = 0;

    /// Writes the changes to the file, as durably as the library does.
    virtual void persist() = 0;
};

} // namespace bench
