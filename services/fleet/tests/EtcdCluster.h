#pragma once

#include "EtcdSession.h"

#include <FleetAdministration.h>
#include <Signal.h>
#include <sys/types.h>

#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace fleet_test {

/// A process of the system's etcd on loopback addresses. The destructor kills it; the kernel kills it if the test ends
/// in another way.
class EtcdMember {
public:
    /// The arguments without the program.
    explicit EtcdMember(const std::vector<std::string>& arguments);
    ~EtcdMember();
    EtcdMember(const EtcdMember&) = delete;
    EtcdMember& operator=(const EtcdMember&) = delete;

    /// Returns false if the member has ended before it was ready to serve.
    bool waitUntilReady();
    void kill(int signal) const;
    pid_t getProcess() const { return process; }

private:
    void readLog();

    pid_t process = -1;
    int logPipe = -1;
    bool ready = false;
    testing_host::Signal known; ///< Ready, or ended.
    std::thread reader;
};

struct ClusterOptions {
    std::size_t members = 1;
    bool tls = false;
    bool clientCertificates = false; ///< The members require one of their clients. Needs `tls`.
    bool authentication = false;     ///< With the users "root" and "client", which may read the fleet's keys.
};

/// A cluster in a temporary folder.
class EtcdCluster {
public:
    /// Returns "" if the machine has what a cluster needs, otherwise the reason.
    static std::string whyUnavailable();

    explicit EtcdCluster(ClusterOptions clusterOptions = {});
    ~EtcdCluster();
    EtcdCluster(const EtcdCluster&) = delete;
    EtcdCluster& operator=(const EtcdCluster&) = delete;

    /// How clients reach the cluster, and how administrators do.
    ZelUnified::FleetAccess getAccess() const;
    ZelUnified::FleetAccess getAdministratorAccess() const;
    void put(const std::string& key, const std::string& value);
    void remove(const std::string& key);
    /// Runs etcdctl as the administrator. Throws std::runtime_error with its output if it fails.
    std::string control(const std::vector<std::string>& arguments) const;

    std::size_t size() const { return members.size(); }
    /// Returns the number of the member that leads; throws if there is none after a while.
    std::size_t findLeader() const;
    void kill(std::size_t member);
    void restart(std::size_t member);
    /// Starts members that cannot serve without each other.
    void restartTogether(const std::vector<std::size_t>& numbers);
    /// Makes all tokens of clients invalid, as their expiry does.
    void loseTokens() const;
    /// Replaces the only member by one without data, whose revisions start again at 1.
    void replace();
    /// Returns the file of the clients' private key with a passphrase.
    std::string getLockedClientKey() const { return folder / "locked.key"; }
    pid_t getProcess(std::size_t member) const { return members.at(member)->getProcess(); }
    /// A suspended process keeps its connections, like a network that has been cut.
    void suspend(std::size_t member) const;
    void resume(std::size_t member) const;
    /// Removes the data of a member that was killed, and starts it as a new member of the cluster.
    void wipe(std::size_t member);

    static constexpr const char* password = "client-secret-5dc1";

private:
    struct Place {
        std::string name;
        std::string clientUrl;
        std::string peerUrl;
    };

    std::unique_ptr<EtcdMember> startMember(std::size_t member, bool joins) const;
    std::string describeCluster() const;
    bool startAll();
    void makeCertificates() const;
    void enableAuthentication();

    const ClusterOptions options;
    std::filesystem::path folder;
    std::vector<Place> places;
    std::vector<std::unique_ptr<EtcdMember>> members;
    std::unique_ptr<fleet::EtcdSession> administrator;
    bool authenticates = false;
};

} // namespace fleet_test
