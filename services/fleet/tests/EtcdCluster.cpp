#include "EtcdCluster.h"

#include "ProgramRun.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace fleet_test {

namespace {

constexpr const char* loopback = "127.0.0.1";

/// Runs a program to its end. Throws with its output if it fails.
std::string run(const std::string& program, const std::vector<std::string>& arguments) {
    auto result = runProgram(findProgram(program), arguments);
    if (result.code != 0) {
        throw std::runtime_error(program + " failed: " + result.output);
    }
    return std::move(result.output);
}

/// Returns ports of the loopback address that were free, all different.
std::vector<int> findFreePorts(std::size_t count) {
    std::vector<int> ports;
    std::vector<int> sockets;
    while (ports.size() < count) {
        const int descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = ::htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        if (descriptor < 0 || ::bind(descriptor, reinterpret_cast<sockaddr*>(&address), length) != 0 ||
            ::getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
            throw std::runtime_error("no free port");
        }
        sockets.push_back(descriptor);
        ports.push_back(::ntohs(address.sin_port));
    }
    std::ranges::for_each(sockets, ::close);
    return ports;
}

/// In memory if possible: an etcd waits for the disk after each change.
std::filesystem::path makeFolder() {
    std::string pattern = ::access("/dev/shm", W_OK) == 0 ? "/dev/shm" : std::filesystem::temp_directory_path();
    pattern += "/lumora-fleet-XXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("no temporary folder");
    }
    return pattern;
}

} // namespace

EtcdMember::EtcdMember(const std::vector<std::string>& arguments) {
    std::tie(process, logPipe) = spawnProgram(findProgram("etcd"), arguments);
    reader = std::thread([this] { readLog(); });
}

EtcdMember::~EtcdMember() {
    kill(SIGKILL);
    int status = 0;
    ::waitpid(process, &status, 0);
    reader.join();
    ::close(logPipe);
}

void EtcdMember::readLog() {
    std::string line;
    std::array<char, 4096> buffer{};
    for (ssize_t count = 0; (count = ::read(logPipe, buffer.data(), buffer.size())) > 0;) {
        if (known.isSet()) {
            continue; // the pipe must not fill up
        }
        line.append(buffer.data(), static_cast<std::size_t>(count));
        if (line.find("ready to serve client requests") != std::string::npos) {
            ready = true;
            known.set();
        }
    }
    if (!known.isSet()) {
        known.set();
    }
}

bool EtcdMember::waitUntilReady() {
    return known.wait() && ready;
}

void EtcdMember::kill(int signal) const {
    ::kill(process, signal);
}

std::string EtcdCluster::whyUnavailable() {
    for (const auto* program : {"etcd", "etcdctl", "openssl"}) {
        if (findProgram(program).empty()) {
            return std::string("this machine has no ") + program + "; scripts/dependencies test installs it";
        }
    }
    return {};
}

EtcdCluster::EtcdCluster(ClusterOptions clusterOptions) : options(clusterOptions), folder(makeFolder()) {
    if (options.tls) {
        makeCertificates();
    }
    // Another program may take a port between the search and the start.
    constexpr int attempts = 3;
    bool started = false;
    for (int attempt = 0; attempt < attempts && !started; ++attempt) {
        started = startAll();
    }
    if (!started) {
        throw std::runtime_error("etcd does not start");
    }
    if (options.authentication) {
        enableAuthentication();
    }
    administrator = std::make_unique<fleet::EtcdSession>(getAdministratorAccess());
}

EtcdCluster::~EtcdCluster() {
    members.clear();
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}

bool EtcdCluster::startAll() {
    members.clear();
    places.clear();
    const auto ports = findFreePorts(options.members * 2);
    const std::string scheme = options.tls ? "https://" : "http://";
    for (std::size_t index = 0; index < options.members; ++index) {
        places.push_back({"member" + std::to_string(index), scheme + loopback + ':' + std::to_string(ports[index * 2]),
                          std::string("http://") + loopback + ':' + std::to_string(ports[index * 2 + 1])});
        std::filesystem::remove_all(folder / places.back().name);
    }
    for (std::size_t index = 0; index < options.members; ++index) {
        members.push_back(startMember(index, false));
    }
    return std::ranges::all_of(members, [](const auto& member) { return member->waitUntilReady(); });
}

std::string EtcdCluster::describeCluster() const {
    std::string text;
    for (const auto& place : places) {
        text += (text.empty() ? "" : ",") + place.name + '=' + place.peerUrl;
    }
    return text;
}

std::unique_ptr<EtcdMember> EtcdCluster::startMember(std::size_t member, bool joins) const {
    const auto& place = places.at(member);
    std::vector<std::string> arguments{"--name", place.name, "--data-dir", folder / place.name, "--listen-client-urls",
                                       place.clientUrl, "--advertise-client-urls", place.clientUrl,
                                       "--listen-peer-urls", place.peerUrl, "--initial-advertise-peer-urls",
                                       place.peerUrl, "--initial-cluster", describeCluster(), "--initial-cluster-state",
                                       joins ? "existing" : "new", "--heartbeat-interval", "100", "--election-timeout",
                                       "1000",
                                       // A wiped member leaves and joins directly after the death of its process.
                                       "--strict-reconfig-check=false"};
    if (options.tls) {
        arguments.insert(arguments.end(), {"--cert-file", folder / "server.pem", "--key-file", folder / "server.key"});
    }
    if (options.clientCertificates) {
        arguments.insert(arguments.end(), {"--client-cert-auth", "--trusted-ca-file", folder / "ca.pem"});
    }
    return std::make_unique<EtcdMember>(std::move(arguments));
}

void EtcdCluster::makeCertificates() const {
    std::ofstream(folder / "names") << "subjectAltName=IP:127.0.0.1\n";
    const std::vector<std::string> newKey{"-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes"};
    const auto request = [&](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "req");
        arguments.insert(arguments.end(), newKey.begin(), newKey.end());
        run("openssl", arguments);
    };
    request({"-x509", "-days", "2", "-subj", "/CN=fleet test authority", "-keyout", folder / "ca.key", "-out",
             folder / "ca.pem"});
    const auto issue = [&](const std::string& name) {
        const auto file = [&](const std::string& extension) { return (folder / (name + extension)).string(); };
        request({"-subj", "/CN=fleet test " + name, "-keyout", file(".key"), "-out", file(".csr")});
        run("openssl", {"x509", "-req", "-days", "2", "-in", file(".csr"), "-CA", folder / "ca.pem", "-CAkey",
                        folder / "ca.key", "-CAcreateserial", "-extfile", folder / "names", "-out", file(".pem")});
    };
    issue("server");
    if (options.clientCertificates) {
        issue("client");
        run("openssl", {"ec", "-aes256", "-passout", "pass:open sesame", "-in", folder / "client.key", "-out",
                        getLockedClientKey()});
    }
}

void EtcdCluster::enableAuthentication() {
    control({"user", "add", "root:root-secret"});
    control({"user", "add", std::string("client:") + password});
    control({"role", "add", "reader"});
    control({"role", "grant-permission", "reader", "--prefix=true", "read", fleet::FleetScope::root});
    control({"user", "grant-role", "client", "reader"});
    control({"auth", "enable"});
    authenticates = true;
}

ZelUnified::FleetAccess EtcdCluster::getAccess() const {
    ZelUnified::FleetAccess access;
    for (const auto& place : places) {
        access.endpoints.push_back(place.clientUrl);
    }
    access.plainHttpAllowed = !options.tls;
    access.authority = options.tls ? (folder / "ca.pem").string() : "";
    if (options.clientCertificates) {
        access.clientCertificate = folder / "client.pem";
        access.clientKey = folder / "client.key";
    }
    if (authenticates) {
        access.username = "client";
        access.password = password;
    }
    return access;
}

ZelUnified::FleetAccess EtcdCluster::getAdministratorAccess() const {
    auto access = getAccess();
    if (authenticates) {
        access.username = "root";
        access.password = "root-secret";
    }
    return access;
}

void EtcdCluster::put(const std::string& key, const std::string& value) {
    administrator->put(key, value);
}

void EtcdCluster::remove(const std::string& key) {
    administrator->remove(key);
}

std::string EtcdCluster::control(const std::vector<std::string>& arguments) const {
    const auto access = getAdministratorAccess();
    std::string endpoints;
    for (const auto& endpoint : access.endpoints) {
        endpoints += (endpoints.empty() ? "" : ",") + endpoint;
    }
    ::setenv("ETCDCTL_API", "3", 1);
    std::vector<std::string> words{"--endpoints", endpoints};
    if (options.tls) {
        words.insert(words.end(), {"--cacert", access.authority});
    }
    if (options.clientCertificates) {
        words.insert(words.end(), {"--cert", access.clientCertificate, "--key", access.clientKey});
    }
    if (authenticates) {
        words.insert(words.end(), {"--user", access.username + ':' + access.password.view()});
    }
    words.insert(words.end(), arguments.begin(), arguments.end());
    return run("etcdctl", words);
}

std::size_t EtcdCluster::findLeader() const {
    // Each line: endpoint, id, version, size, is leader, and others.
    std::stringstream lines(control({"endpoint", "status"}));
    for (std::string line; std::getline(lines, line);) {
        std::vector<std::string> fields;
        std::stringstream row(line);
        for (std::string field; std::getline(row, field, ',');) {
            fields.push_back(field);
        }
        const auto place = std::ranges::find(places, fields.front(), &Place::clientUrl);
        if (fields.size() > 4 && fields[4] == " true" && place != places.end()) {
            return static_cast<std::size_t>(place - places.begin());
        }
    }
    throw std::runtime_error("the cluster has no leader");
}

void EtcdCluster::kill(std::size_t member) {
    members.at(member).reset();
}

void EtcdCluster::restart(std::size_t member) {
    members.at(member).reset();
    members.at(member) = startMember(member, false);
    if (!members.at(member)->waitUntilReady()) {
        throw std::runtime_error("a member does not start again");
    }
}

void EtcdCluster::restartTogether(const std::vector<std::size_t>& numbers) {
    for (const auto member : numbers) {
        members.at(member).reset();
        members.at(member) = startMember(member, false);
    }
    for (const auto member : numbers) {
        if (!members.at(member)->waitUntilReady()) {
            throw std::runtime_error("a member does not start again");
        }
    }
}

void EtcdCluster::loseTokens() const {
    control({"auth", "disable"});
    control({"auth", "enable"});
}

void EtcdCluster::replace() {
    kill(0);
    std::filesystem::remove_all(folder / places.front().name);
    restart(0);
}

void EtcdCluster::suspend(std::size_t member) const {
    members.at(member)->kill(SIGSTOP);
    // kill() returns before all threads of the member have stopped.
    ::waitpid(getProcess(member), nullptr, WUNTRACED);
}

void EtcdCluster::resume(std::size_t member) const {
    members.at(member)->kill(SIGCONT);
}

void EtcdCluster::wipe(std::size_t member) {
    kill(member);
    const auto& place = places.at(member);
    std::filesystem::remove_all(folder / place.name);
    std::stringstream lines(control({"member", "list"}));
    for (std::string line; std::getline(lines, line);) {
        if (line.find(place.peerUrl) != std::string::npos) {
            control({"member", "remove", line.substr(0, line.find(','))});
        }
    }
    control({"member", "add", place.name, "--peer-urls=" + place.peerUrl});
    members.at(member) = startMember(member, true);
    if (!members.at(member)->waitUntilReady()) {
        throw std::runtime_error("a wiped member does not join");
    }
}

} // namespace fleet_test
