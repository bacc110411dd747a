#include "EtcdSession.h"

#include "LoggedText.h"

#include <future>
#include <utility>

namespace fleet {

namespace {

/// A scope of a fleet can hold no more for a client.
constexpr std::size_t listLimit = 10001;

std::string describe(const HttpResult& result) {
    if (!result.error.empty()) {
        return result.error;
    }
    const auto reason = etcd::parseFailure(result.body);
    return toLoggedText(reason.empty() ? "status " + std::to_string(result.status) : reason);
}

} // namespace

EtcdSession::EtcdSession(ClusterAccess clusterAccess, std::chrono::milliseconds timeout)
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
    request(etcd::putPath, etcd::makePut(key, value));
}

bool EtcdSession::remove(const std::string& key) {
    const auto count = etcd::parseDeletedCount(request(etcd::deletePath, etcd::makeDelete(key)));
    if (!count) {
        throw EtcdError("the cluster sends an unknown answer");
    }
    return *count > 0;
}

std::vector<etcd::Pair> EtcdSession::list(const std::vector<FleetScope>& scopes) {
    auto snapshot = etcd::parseSnapshot(request(etcd::transactionPath, etcd::makeSnapshot(scopes, listLimit)));
    if (!snapshot) {
        throw EtcdError("the cluster sends an unknown answer");
    }
    return std::move(snapshot->pairs);
}

std::string EtcdSession::request(const char* path, const std::string& body) {
    HttpResult result;
    // One attempt for each endpoint, and one for a token that has expired.
    for (std::size_t attempt = 0; attempt <= access.endpoints.size(); ++attempt) {
        if (!access.username.empty() && token.empty()) {
            authenticate();
        }
        result = send(path, body);
        if (result.isSuccess()) {
            return result.body;
        }
        if (result.status == 401 && !token.empty()) {
            token.clear();
        } else {
            endpoint = (endpoint + 1) % access.endpoints.size();
        }
    }
    throw EtcdError(describe(result));
}

void EtcdSession::authenticate() {
    const auto result = send(etcd::authenticatePath, etcd::makeAuthenticate(access.username, access.password));
    if (etcd::parseFailure(result.body) == etcd::authenticationDisabled) {
        return;
    }
    auto received = result.isSuccess() ? etcd::parseToken(result.body) : std::nullopt;
    if (received) {
        token = std::move(*received);
    } else if (result.status != 0) {
        throw EtcdError("the user cannot be authenticated: " + describe(result));
    }
}

HttpResult EtcdSession::send(const char* path, const std::string& body) {
    std::vector<std::string> headers{"Content-Type: application/json", "Expect:"};
    if (!token.empty()) {
        headers.push_back("Authorization: " + token);
    }
    HttpRequest sent{access.endpoints[endpoint] + path, std::move(headers), body, answerTime};
    std::promise<HttpResult> promise;
    auto answer = promise.get_future();
    thread.post([&] {
        transfer = thread.start(access, std::move(sent), {nullptr, [&](const HttpResult& result) {
                                                              auto copy = result;
                                                              transfer.reset();
                                                              promise.set_value(std::move(copy));
                                                          }});
    });
    // The request has a timeout of its own, so this one only ends a wait for a thread that has failed.
    if (answer.wait_for(answerTime + std::chrono::seconds(5)) != std::future_status::ready) {
        thread.end();
        throw EtcdError("the request cannot be sent");
    }
    return answer.get();
}

} // namespace fleet
