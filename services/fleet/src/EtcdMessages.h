#pragma once

#include "FleetScope.h"

#include <WipedText.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The messages of etcd's HTTP/JSON gateway that a client of the fleet needs. The replies are foreign bytes: a reply of
/// another form is no reply.
namespace fleet::etcd {

/// The paths of the requests below.
inline constexpr const char* authenticatePath = "/v3/auth/authenticate";
inline constexpr const char* transactionPath = "/v3/kv/txn";
inline constexpr const char* rangePath = "/v3/kv/range";
inline constexpr const char* watchPath = "/v3/watch";
inline constexpr const char* putPath = "/v3/kv/put";
inline constexpr const char* deletePath = "/v3/kv/deleterange";

/// The failure of an authentication that the cluster does not require.
inline constexpr const char* authenticationDisabled = "etcdserver: authentication is not enabled";

/// A pair that exists, or a key that was deleted.
struct Pair {
    std::string key;
    std::string value;
    bool deleted = false;
};

/// The pairs of one key or of some scopes at one revision.
struct Snapshot {
    std::int64_t revision = 0;
    std::vector<Pair> pairs;
    bool more = false; ///< A scope has more pairs than were asked for.
};

/// One message of a watch.
struct WatchReply {
    bool created = false;
    bool canceled = false;
    std::string reason; ///< Why the cluster has ended the watch.
    std::vector<Pair> changes;
};

/// Returns the headers of each request; `token` is empty for none.
std::vector<std::string> makeHeaders(const std::string& token);
/// Returns true if another token may help: there was none, or it has expired, or its user's rights have changed.
bool isAboutToken(int status);
/// The same for the reason of the end of a watch.
bool isAboutToken(const std::string& reason);

/// Leaves no copy of the password in freed memory.
ZelUnified::WipedText makeAuthenticate(const std::string& username, const ZelUnified::WipedText& password);
/// Reads all scopes in one transaction, so at one revision, and at most `limit` pairs of each; 0 for all pairs.
std::string makeSnapshot(const std::vector<FleetScope>& scopes, std::size_t limit);
/// Reads the keys of the scope without their values.
std::string makeKeys(const FleetScope& scope);
/// Reads one key and its value.
std::string makeGet(const std::string& key);
/// Watches each scope from this revision; the numbers of the watches are 1, 2 and so on.
std::string makeWatch(const std::vector<FleetScope>& scopes, std::int64_t revision);
/// Asks one member for the number of pairs in the scope. The member answers alone, without the others.
std::string makeProbe(const FleetScope& scope);
std::string makePut(const std::string& key, const std::string& value);
std::string makeDelete(const std::string& key);

/// Each returns nothing if the text is not that reply. A token is printable, so that it fits a header.
std::optional<std::string> parseToken(std::string_view text);
std::optional<Snapshot> parseSnapshot(std::string_view text);
/// The reply to makeKeys() and makeGet().
std::optional<Snapshot> parseRange(std::string_view text);
std::optional<WatchReply> parseWatchReply(std::string_view line);
std::optional<std::int64_t> parseDeletedCount(std::string_view text);
/// Returns the message of a failure; "" if the text contains none.
std::string parseFailure(std::string_view text);

} // namespace fleet::etcd
