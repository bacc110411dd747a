#include "PatientWriter.h"

#include "FleetScope.h"

#include <algorithm>
#include <chrono>

namespace fleet_test {

namespace {

ZelUnified::FleetAccess getAccess(const EtcdCluster& cluster, std::size_t number) {
    auto access = cluster.getAdministratorAccess();
    auto& endpoints = access.endpoints;
    std::ranges::rotate(endpoints, endpoints.begin() + static_cast<std::ptrdiff_t>(number % endpoints.size()));
    return access;
}

} // namespace

PatientWriter::PatientWriter(const EtcdCluster& cluster, std::size_t number) : session(getAccess(cluster, number)) {}

void PatientWriter::put(const std::string& key, const std::string& value) {
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::seconds patience(120);
    const auto end = Clock::now() + patience;
    for (;;) {
        try {
            session.put(fleet::FleetScope::ofAll().prefix + key, value);
            return;
        } catch (const fleet::EtcdError&) {
            if (Clock::now() > end) {
                throw;
            }
        }
    }
}

} // namespace fleet_test
