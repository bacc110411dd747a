#pragma once

#include <unified/FeatureSet.h>

#include <ForeignServiceExport.h>

#include <string>
#include <vector>

namespace example {

/// The service of this plug-in: downloads its servers and adds them to the configuration. Registered with the factory
/// under this type and `directoryServiceId`. The operations run on the services dispatcher's thread; any other thread
/// may wait for them.
class FOREIGN_SERVICE_API DirectoryService : public ZelUnified::FeatureSet {
public:
    static constexpr unsigned int directoryServiceId = 7100;

    /// Adds the downloaded settings to the chain. A copy of them stays on the disk for the next run.
    virtual void deliver(const std::string& presenceServer, const std::string& directoryServer) = 0;
    /// Removes the settings and their copy when the user signs out. Returns false if there were none.
    virtual bool withdraw() = 0;
    /// Returns the received changes of the two observed keys, oldest first: "KEY=VALUE".
    virtual std::vector<std::string> getHeard() = 0;
};

} // namespace example
