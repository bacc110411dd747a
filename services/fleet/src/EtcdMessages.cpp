#include "EtcdMessages.h"

#include "Base64.h"

#include <algorithm>
#include <charconv>
#include <nlohmann/json.hpp>

namespace fleet::etcd {

namespace {

using Json = nlohmann::json;

/// Thrown within this file.
struct NoReply {};

Json makeRange(const FleetScope& scope) {
    return {{"key", encodeBase64(scope.prefix)}, {"range_end", encodeBase64(scope.getEnd())}};
}

std::string toText(const Json& message) {
    return message.dump(-1, ' ', false, Json::error_handler_t::replace);
}

/// The longest escape, `\u00XX`, in characters.
constexpr std::size_t longestEscape = 6;

/// Appends the text as JSON writes it in a string. The library would leave copies of a password behind.
void appendEscaped(std::string& json, std::string_view text) {
    constexpr std::string_view digits = "0123456789abcdef";
    for (const char character : text) {
        const auto code = static_cast<unsigned char>(character);
        if (code < ' ') {
            json += "\\u00";
            json += digits[code / 16];
            json += digits[code % 16];
        } else {
            if (character == '"' || character == '\\') {
                json += '\\';
            }
            json += character;
        }
    }
}

/// The gateway writes numbers of 64 bits as strings, and leaves out those that are zero.
std::int64_t toNumber(const Json& object, const char* field) {
    const auto text = object.value(field, std::string("0"));
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) {
        throw NoReply();
    }
    return number;
}

std::string toBytes(const Json& object, const char* field) {
    auto bytes = decodeBase64(object.value(field, std::string()));
    if (!bytes) {
        throw NoReply();
    }
    return std::move(*bytes);
}

Pair toPair(const Json& object) {
    return {toBytes(object, "key"), toBytes(object, "value"), false};
}

Pair toChange(const Json& event) {
    auto pair = toPair(event.at("kv"));
    pair.deleted = event.value("type", "PUT") == "DELETE";
    return pair;
}

std::string toToken(const Json& reply) {
    auto token = reply.at("token").get<std::string>();
    if (token.empty() ||
        !std::ranges::all_of(token, [](char character) { return character > ' ' && character <= '~'; })) {
        throw NoReply();
    }
    return token;
}

/// Returns the member, or an empty list: the gateway leaves out empty lists.
const Json& listOf(const Json& object, const char* field) {
    static const Json none = Json::array();
    const auto found = object.find(field);
    return found == object.end() ? none : *found;
}

/// Returns the result of `parse` for the text; nothing if either fails.
template <class Parse>
auto parseReply(std::string_view text, const Parse& parse) -> std::optional<decltype(parse(Json()))> {
    try {
        return parse(Json::parse(text));
    } catch (const Json::exception&) {
        return std::nullopt;
    } catch (const NoReply&) {
        return std::nullopt;
    }
}

void appendRange(Snapshot& snapshot, const Json& range) {
    for (const auto& pair : listOf(range, "kvs")) {
        snapshot.pairs.push_back(toPair(pair));
    }
    snapshot.more = snapshot.more || range.value("more", false);
}

Snapshot toSnapshot(const Json& reply) {
    Snapshot snapshot;
    snapshot.revision = toNumber(reply.at("header"), "revision");
    for (const auto& response : reply.at("responses")) {
        appendRange(snapshot, response.at("response_range"));
    }
    return snapshot;
}

Snapshot toRange(const Json& reply) {
    Snapshot snapshot;
    snapshot.revision = toNumber(reply.at("header"), "revision");
    if (snapshot.revision <= 0) {
        throw NoReply(); // the only field that every reply contains
    }
    appendRange(snapshot, reply);
    return snapshot;
}

/// Versions of the gateway differ in whether a failure is an object or its text.
std::string toReason(const Json& error) {
    return error.is_object() ? error.value("message", std::string()) : error.get<std::string>();
}

WatchReply toWatchReply(const Json& message) {
    if (message.contains("error")) {
        return {false, true, toReason(message.at("error")), {}};
    }
    const auto& result = message.at("result");
    WatchReply reply;
    reply.created = result.value("created", false);
    reply.canceled = result.value("canceled", false);
    reply.reason = result.value("cancel_reason", std::string());
    if (reply.canceled && reply.reason.empty() && toNumber(result, "compact_revision") > 0) {
        reply.reason = "the revision has been compacted";
    }
    for (const auto& event : listOf(result, "events")) {
        reply.changes.push_back(toChange(event));
    }
    return reply;
}

} // namespace

std::vector<std::string> makeHeaders(const std::string& token) {
    // The last one makes a member that has lost the leader end a watch, and refuse other requests.
    std::vector<std::string> headers{"Content-Type: application/json", "Expect:", "Grpc-Metadata-hasleader: true"};
    if (!token.empty()) {
        headers.push_back("Authorization: " + token);
    }
    return headers;
}

bool isAboutToken(int status) {
    return status == 400 || status == 401 || status == 403;
}

bool isAboutToken(const std::string& reason) {
    return reason.find("auth token") != std::string::npos || reason.find("auth store") != std::string::npos ||
           reason.find("auth: revision") != std::string::npos || reason.find("user name is empty") != std::string::npos;
}

ZelUnified::WipedText makeAuthenticate(const std::string& username, const ZelUnified::WipedText& password) {
    constexpr std::string_view form = R"({"name":"","password":""})";
    std::string text;
    // Without growing, which would leave copies behind.
    text.reserve(form.size() + longestEscape * (username.size() + password.view().size()));
    text += R"({"name":")";
    appendEscaped(text, username);
    text += R"(","password":")";
    appendEscaped(text, password.view());
    text += R"("})";
    return text;
}

std::string makeSnapshot(const std::vector<FleetScope>& scopes, std::size_t limit) {
    auto operations = Json::array();
    for (const auto& scope : scopes) {
        auto range = makeRange(scope);
        range["limit"] = std::to_string(limit);
        operations.push_back({{"request_range", range}});
    }
    return toText({{"success", operations}});
}

std::string makeKeys(const FleetScope& scope) {
    auto range = makeRange(scope);
    range["keys_only"] = true;
    return toText(range);
}

std::string makeGet(const std::string& key) {
    return toText({{"key", encodeBase64(key)}});
}

std::string makeWatch(const std::vector<FleetScope>& scopes, std::int64_t revision) {
    std::string requests;
    std::size_t number = 0;
    for (const auto& scope : scopes) {
        auto request = makeRange(scope);
        request["start_revision"] = std::to_string(revision);
        request["watch_id"] = std::to_string(++number);
        requests += toText({{"create_request", request}}) + '\n';
    }
    return requests;
}

std::string makeProbe(const FleetScope& scope) {
    auto range = makeRange(scope);
    range["serializable"] = true;
    range["count_only"] = true;
    return toText(range);
}

std::string makePut(const std::string& key, const std::string& value) {
    return toText({{"key", encodeBase64(key)}, {"value", encodeBase64(value)}});
}

std::string makeDelete(const std::string& key) {
    return toText({{"key", encodeBase64(key)}});
}

std::optional<std::string> parseToken(std::string_view text) {
    return parseReply(text, toToken);
}

std::optional<Snapshot> parseSnapshot(std::string_view text) {
    return parseReply(text, toSnapshot);
}

std::optional<Snapshot> parseRange(std::string_view text) {
    return parseReply(text, toRange);
}

std::optional<WatchReply> parseWatchReply(std::string_view line) {
    return parseReply(line, toWatchReply);
}

std::optional<std::int64_t> parseDeletedCount(std::string_view text) {
    return parseReply(text, [](const Json& reply) { return toNumber(reply, "deleted"); });
}

std::string parseFailure(std::string_view text) {
    const auto message = parseReply(text, [](const Json& reply) { return toReason(reply.at("error")); });
    return message.value_or(std::string());
}

} // namespace fleet::etcd
