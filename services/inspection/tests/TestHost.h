#pragma once

#include "InspectionServer.h"

#include <kyr/LocalConnection.h>
#include <unified/UnifiedFactoryImpl.h>

#include <ConfigFeatureSet.h>
#include <ConfigMap.h>
#include <ConfigService.h>
#include <TemporaryProfile.h>

#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>

namespace inspection_test {

using Json = nlohmann::json;

/// A client: the host with the plug-in of the configuration service on a temporary profile, and a server.
class TestHost {
public:
    /// The policy, if its key is not empty, is there before the service starts.
    explicit TestHost(const inspection::InspectionLimits& limits = {}, const ZelUnified::ConfigMap& defaults = {},
                      const std::pair<std::string, std::string>& policy = {});
    ~TestHost();
    TestHost(const TestHost&) = delete;
    TestHost& operator=(const TestHost&) = delete;

    std::string socketPath() const { return (profile.root() / "run" / "s.sock").string(); }
    inspection::InspectionServer& server() { return *inspectionServer; }
    void endServer() { inspectionServer.reset(); }
    /// Sets a value in the administrator's policy and reads it.
    void setPolicy(const std::string& key, const std::string& value);

    /// Runs `work` on the services dispatcher's thread and waits for it.
    void onServices(const std::function<void()>& work) const;
    void set(const std::wstring& key, const std::wstring& value) const;
    /// Returns the number of records, of which a query must not create one.
    std::size_t countRecords() const;

    const std::shared_ptr<ZelUnified::UnifiedFactoryImpl>& getFactory() const { return factory; }
    ZelUnified::ConfigService& service() const { return *configService; }
    ZelUnified::ConfigFeatureSet& featureSet() const { return *configFeatureSet; }
    const testing_host::TemporaryProfile& getProfile() const { return profile; }

private:
    void writePolicy(const std::string& key, const std::string& value) const;

    const testing_host::TemporaryProfile profile;
    std::shared_ptr<ZelUnified::UnifiedFactoryImpl> factory;
    std::shared_ptr<ZelUnified::ConfigService> configService;
    std::shared_ptr<ZelUnified::ConfigFeatureSet> configFeatureSet;
    std::unique_ptr<inspection::InspectionServer> inspectionServer;
};

/// A connection of another process, as far as the server can tell. Every wait is bounded.
class Peer {
public:
    explicit Peer(const std::string& path) : connection(path) {}
    explicit Peer(const TestHost& host) : Peer(host.socketPath()) {}

    /// Sends a line as it is.
    bool sendText(const std::string& line);
    /// Returns the next line. Throws std::runtime_error if none arrives.
    Json receive();
    /// Sends the request and returns the next line.
    Json ask(const Json& request);
    /// Waits until the server has closed the connection. Returns false if it sends a line or keeps the connection.
    bool isDropped();

    /// Like isDropped(), but reads the part of a reply that was sent before.
    bool isCutOff();

    bool isOpen() const { return connection.isOpen(); }

private:
    KyrCoreUtils::LocalConnection connection;
};

} // namespace inspection_test
