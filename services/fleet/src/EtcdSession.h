#pragma once

#include "EtcdMessages.h"
#include "FleetScope.h"
#include "HttpThread.h"

#include <FleetAdministration.h>

#include <chrono>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace fleet {

/// A request that the cluster has refused, or that no member has answered. The text is one line.
class EtcdError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads and writes the keys of a cluster for administrators. Each operation waits for the answer, and tries the
/// next endpoint if a member cannot answer; all throw EtcdError. Not thread-safe.
class EtcdSession {
public:
    explicit EtcdSession(ZelUnified::FleetAccess clusterAccess,
                         std::chrono::milliseconds timeout = std::chrono::seconds(10));
    ~EtcdSession();
    EtcdSession(const EtcdSession&) = delete;
    EtcdSession& operator=(const EtcdSession&) = delete;

    void put(const std::string& key, const std::string& value);
    /// Returns false if there was no such key. Also throws if a member may have removed the key without an answer.
    bool remove(const std::string& key);
    /// Returns the pairs of the scopes, in this order, all at one revision.
    std::vector<etcd::Pair> list(const std::vector<FleetScope>& scopes);
    /// Throws if the cluster cannot be read. Reads at most one pair of each scope.
    void check(const std::vector<FleetScope>& scopes);
    /// Returns the last key of the scope, in the order of etcd, that equals `key` ignoring case. `key` and the returned
    /// one are without the prefix of the scope. Reads the keys of the scope.
    std::optional<std::string> findKey(const FleetScope& scope, const std::string& key);
    /// Returns the value of the key, which is without the prefix of the scope; nothing if there is no such key.
    std::optional<std::string> get(const FleetScope& scope, const std::string& key);

private:
    /// Whether a second request has the same answer as one whose answer was lost.
    enum class Repetition { Harmless, Misleading };

    etcd::Snapshot readRange(const std::string& body);
    std::string request(const char* path, const ZelUnified::WipedText& body, Repetition repetition);
    /// Authenticates first if that is necessary.
    HttpResult requestFromMember(const char* path, const ZelUnified::WipedText& body);
    HttpResult send(const char* path, const ZelUnified::WipedText& body);
    /// Throws if the cluster refuses the user.
    HttpResult authenticate();

    const ZelUnified::FleetAccess access;
    const std::chrono::milliseconds answerTime;
    std::size_t endpoint = 0;
    std::string token;
    HttpThread thread;
    std::unique_ptr<HttpTransfer> transfer; ///< Of the thread while it runs.
};

} // namespace fleet
