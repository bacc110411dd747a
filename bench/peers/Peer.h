#pragma once

#include <optional>
#include <string>

namespace bench {

/// One layer of keys in another library, read from the file that the library itself wrote. Keys are in lower case:
/// most of these libraries tell cases apart, so whoever asks folds the key first.
class Peer {
public:
    virtual ~Peer() = default;
    Peer() = default;
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    /// What the library hands out, as the client's own text; empty on a miss.
    virtual std::optional<std::string> read(const std::string& key) = 0;

    /// Sets the value of a key that there is. Whoever listens has heard of it when this returns, where the library
    /// tells of changes.
    virtual void set(const std::string& key, const std::string& value) = 0;

    /// Brings what was set into the file, as durably as the library does it.
    virtual void persist() = 0;
};

} // namespace bench
