#pragma once

#include "Workload.h"

#include <ConfigFeatureSet.h>
#include <ConfigMap.h>
#include <ConfigService.h>
#include <RecordingFactory.h>
#include <TemporaryProfile.h>
#include <XmlConfigStore.h>

#include <cstddef>
#include <memory>
#include <string>

namespace bench {

/// The files of a client with five layers of 500 keys: the user's settings, a policy, two documents that an earlier run
/// received, the defaults.
class SmallProfile {
public:
    static constexpr std::size_t keysInLayer = 500;

    SmallProfile();

    const Workload& getWorkload() const { return workload; }
    /// The keys of the user's settings.
    const ZelUnified::ConfigMap& getUserLayer() const { return workload.getLayers().front(); }
    /// Returns the first document as another service delivers it, with `suffix` behind each value.
    std::shared_ptr<ZelUnified::XmlConfigStore> deliverDocument(const std::wstring& suffix) const;

private:
    void writeUserFile() const;
    void writePolicy() const;
    void writeDocument(std::size_t number) const;
    void writeDefaults() const;

    const testing_host::TemporaryProfile profile;
    const Workload workload{5, keysInLayer};
};

/// The whole service, started on the existing profile. The calling thread is the services dispatcher's.
class SmallClient {
public:
    SmallClient();
    ~SmallClient();
    SmallClient(const SmallClient&) = delete;
    SmallClient& operator=(const SmallClient&) = delete;

    ZelUnified::ConfigService& service() { return *configService; }
    ZelUnified::ConfigFeatureSet& featureSet() { return *configFeatureSet; }

    /// Runs the background tasks, which write the files.
    void writeFiles() { factory->backgroundDispatcher->runAll(); }
    void dropBackgroundTasks() { factory->backgroundDispatcher->clear(); }

private:
    const std::shared_ptr<testing_host::RecordingFactory> factory = std::make_shared<testing_host::RecordingFactory>();
    std::shared_ptr<ZelUnified::ConfigService> configService;
    std::shared_ptr<ZelUnified::ConfigFeatureSet> configFeatureSet;
};

} // namespace bench
