#pragma once

#include <unified/FeatureSet.h>

#include <ForeignServiceExport.h>

#include <string>
#include <vector>

namespace example {

/// What this plug-in offers to its host: a directory service that downloads its servers and hands them to the
/// configuration. Filed with the factory under this type and `directoryServiceId`. Any thread but the services
/// dispatcher's may wait for it; the work itself is done there.
class FOREIGN_SERVICE_API DirectoryService : public ZelUnified::FeatureSet {
public:
    static constexpr unsigned int directoryServiceId = 7100;

    /// The download has arrived: its settings join the chain, and a copy of them stays on disk for the next run.
    virtual void deliver(const std::string& presenceServer, const std::string& directoryServer) = 0;
    /// The user signed out: the settings and their copy go. False when there were none.
    virtual bool withdraw() = 0;
    /// What was heard of the two keys that are followed, oldest first: "KEY=VALUE".
    virtual std::vector<std::string> getHeard() = 0;
};

} // namespace example
