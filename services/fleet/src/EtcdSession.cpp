#include "EtcdSession.h"

#include "EndpointProblem.h"
#include "LoggedText.h"

#include <kyr/StringUtils.h>

#include <algorithm>
#include <exception>
#include <future>
#include <utility>

namespace fleet {

namespace {

/// Returns true if the member could not answer, so that another one may.
bool isMemberDown(const HttpResult& result) {
    return !result.error.empty() || result.status >= 500;
}

std::string describe(const HttpResult& result) {
    if (!result.error.empty()) {
        return result.error;
    }
    if (result.isSuccess()) {
        return "the cluster sends an unknown answer";
    }
    const auto reason = etcd::parseFailure(result.body);
    return toLoggedText(reason.empty() ? "status " + std::to_string(result.status) : reason);
}

/// Returns the reply. Throws EtcdError if there is none.
template <class Reply>
Reply require(std::optional<Reply> reply) {
    if (!reply) {
        throw EtcdError("the cluster sends an unknown answer");
    }
    return std::move(*reply);
}

/// Returns the snapshot. Throws EtcdError if there is none or pairs are missing.
etcd::Snapshot requireComplete(std::optional<etcd::Snapshot> reply) {
    if (reply && reply->more) {
        reply.reset();
    }
    return require(std::move(reply));
}

} // namespace

EtcdSession::EtcdSession(ZelUnified::FleetAccess clusterAccess, std::chrono::milliseconds timeout)
    : access(std::move(clusterAccess)), answerTime(timeout) {
    if (access.endpoints.empty()) {
        throw EtcdError("no endpoint is given");
    }
    for (const auto& candidate : access.endpoints) {
        if (const auto reason = findEndpointProblem(access, candidate); !reason.empty()) {
            throw EtcdError("the endpoint cannot be used: " + reason);
        }
    }
}

EtcdSession::~EtcdSession() {
    thread.end();
}

void EtcdSession::put(const std::string& key, const std::string& value) {
    request(etcd::putPath, etcd::makePut(key, value), Repetition::Harmless);
}

bool EtcdSession::remove(const std::string& key) {
    const auto text = request(etcd::deletePath, etcd::makeDelete(key), Repetition::Misleading);
    return require(etcd::parseDeletedCount(text)) > 0;
}

std::vector<etcd::Pair> EtcdSession::list(const std::vector<FleetScope>& scopes) {
    // An administrator must see, and be able to remove, what is too much for a client.
    const auto text = request(etcd::transactionPath, etcd::makeSnapshot(scopes, 0), Repetition::Harmless);
    return requireComplete(etcd::parseSnapshot(text)).pairs;
}

void EtcdSession::check(const std::vector<FleetScope>& scopes) {
    require(etcd::parseSnapshot(request(etcd::transactionPath, etcd::makeSnapshot(scopes, 1), Repetition::Harmless)));
}

std::optional<std::string> EtcdSession::findKey(const FleetScope& scope, const std::string& key) {
    const auto keys = readRange(etcd::makeKeys(scope));
    for (auto pair = keys.pairs.rbegin(); pair != keys.pairs.rend(); ++pair) {
        if (!pair->key.starts_with(scope.prefix)) {
            continue; // no answer of etcd contains such a key, but another server may send anything
        }
        auto spelling = pair->key.substr(scope.prefix.size());
        if (KyrCoreUtils::caseInsensitiveStringEquals(spelling, key)) {
            return spelling;
        }
    }
    return std::nullopt;
}

std::optional<std::string> EtcdSession::get(const FleetScope& scope, const std::string& key) {
    auto pairs = readRange(etcd::makeGet(scope.prefix + key)).pairs;
    return pairs.empty() ? std::nullopt : std::optional(std::move(pairs.front().value));
}

etcd::Snapshot EtcdSession::readRange(const std::string& body) {
    return requireComplete(etcd::parseRange(request(etcd::rangePath, body, Repetition::Harmless)));
}

std::string EtcdSession::request(const char* path, const ZelUnified::WipedText& body, Repetition repetition) {
    HttpResult result;
    for (std::size_t membersDown = 0; membersDown < access.endpoints.size(); ++membersDown) {
        result = requestFromMember(path, body);
        if (result.isSuccess()) {
            return result.body;
        }
        if (!isMemberDown(result)) {
            break;
        }
        if (repetition == Repetition::Misleading && result.wasSent) {
            throw EtcdError("the cluster has not confirmed the change, which may have been made: " + describe(result));
        }
        endpoint = (endpoint + 1) % access.endpoints.size();
    }
    throw EtcdError(describe(result));
}

HttpResult EtcdSession::requestFromMember(const char* path, const ZelUnified::WipedText& body) {
    if (!token.empty()) {
        auto result = send(path, body);
        if (!etcd::isAboutToken(result.status)) {
            return result;
        }
        token.clear();
    }
    if (!access.username.empty()) {
        if (auto result = authenticate(); isMemberDown(result)) {
            result.wasSent = false; // the request itself
            return result;
        }
    }
    return send(path, body);
}

HttpResult EtcdSession::authenticate() {
    auto result = send(etcd::authenticatePath, etcd::makeAuthenticate(access.username, access.password));
    if (isMemberDown(result) || etcd::parseFailure(result.body) == etcd::authenticationDisabled) {
        return result;
    }
    auto received = result.isSuccess() ? etcd::parseToken(result.body) : std::nullopt;
    if (!received) {
        throw EtcdError("the user cannot be authenticated: " + describe(result));
    }
    token = std::move(*received);
    return result;
}

HttpResult EtcdSession::send(const char* path, const ZelUnified::WipedText& body) {
    HttpRequest sent{access.endpoints[endpoint] + path, etcd::makeHeaders(token), body, answerTime};
    std::promise<HttpResult> promise;
    auto answer = promise.get_future();
    thread.post([&] {
        try {
            transfer = thread.start(access, std::move(sent), {nullptr, [&](const HttpResult& result) {
                                                                  auto copy = result;
                                                                  transfer.reset();
                                                                  promise.set_value(std::move(copy));
                                                              }});
        } catch (const std::exception& failure) {
            HttpResult result;
            result.error = failure.what();
            promise.set_value(std::move(result));
        }
    });
    // The request has a timeout of its own, so this one only ends a wait for a thread that has failed.
    if (answer.wait_for(answerTime + std::chrono::seconds(5)) != std::future_status::ready) {
        thread.end();
        throw EtcdError("the request cannot be sent");
    }
    return answer.get();
}

} // namespace fleet
