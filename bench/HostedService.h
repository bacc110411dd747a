#pragma once

#include <unified/UnifiedFactoryImpl.h>

#include <ConfigFeatureSet.h>
#include <ConfigMap.h>
#include <ConfigService.h>
#include <TemporaryProfile.h>

#include <cstddef>
#include <filesystem>
#include <memory>
#include <vector>

namespace bench {

/// The service in the real host, on a temporary profile. The thread that constructs it acts as the services
/// dispatcher's.
class HostedService {
public:
    /// Without records there is no public service and the chain has no observer. That saves a gigabyte in rows that
    /// only use the chain.
    enum class Records { With, Without };

    /// The first layer is the user's store, the last one the defaults of the installation; those between are documents
    /// added by other services. A single layer is such a document.
    explicit HostedService(const std::vector<ZelUnified::ConfigMap>& layers, Records records = Records::With);
    ~HostedService();
    HostedService(const HostedService&) = delete;
    HostedService& operator=(const HostedService&) = delete;

    ZelUnified::ConfigService& service() { return *configService; }
    ZelUnified::ConfigFeatureSet& featureSet() { return *configFeatureSet; }

    /// Waits until all changes are on the disk.
    void awaitFiles() { factory->flushBackgroundDispatcher(); }
    std::filesystem::path configFolder() const { return profile.config(); }

private:
    void writeDefaults(const ZelUnified::ConfigMap& values) const;
    void addDocument(std::size_t number, const ZelUnified::ConfigMap& values);

    testing_host::TemporaryProfile profile;
    std::shared_ptr<ZelUnified::UnifiedFactoryImpl> factory;
    std::shared_ptr<ZelUnified::ConfigService> configService;
    std::shared_ptr<ZelUnified::ConfigFeatureSet> configFeatureSet;
};

} // namespace bench
