#pragma once

#include <unified/UnifiedFactoryImpl.h>

#include <ConfigFeatureSet.h>
#include <ConfigService.h>
#include <InspectionService.h>
#include <TemporaryProfile.h>

#include <functional>
#include <memory>
#include <string>

namespace bench {

/// A client with 5,000 keys in its defaults and its own services thread, with or without the inspection service. Only
/// one exists at a time, because a process has one profile.
class InspectedClient {
public:
    enum class Inspection { With, Without };

    explicit InspectedClient(Inspection inspected);
    ~InspectedClient();
    InspectedClient(const InspectedClient&) = delete;
    InspectedClient& operator=(const InspectedClient&) = delete;

    /// Runs `work` later on the services dispatcher's thread.
    void post(std::function<void()> work) const;
    /// Runs `work` there and waits for it.
    void run(std::function<void()> work) const;
    /// Sets a value in memory. Services dispatcher's thread.
    void set(const std::wstring& key, const std::wstring& value) const { featureSet->setInMemoryConfig(key, value); }
    /// Writes a value to the policy file, which the client reads at its next refresh.
    void writePolicy(const std::string& key, const std::string& value) const;
    std::string socketPath() const { return inspection->getSocketPath(); }

private:
    const testing_host::TemporaryProfile profile;
    std::shared_ptr<ZelUnified::UnifiedFactoryImpl> factory;
    std::shared_ptr<ZelUnified::ConfigFeatureSet> featureSet;
    std::shared_ptr<ZelUnified::InspectionService> inspection;
};

} // namespace bench
