#pragma once

#include "SyntheticKeys.h"

#include <ConfigFeatureSet.h>
#include <ConfigMap.h>
#include <ConfigService.h>
#include <InMemoryConfigStore.h>
#include <RecordingFactory.h>

#include <cstddef>
#include <memory>
#include <string>

namespace bench {

/// The service on a factory without threads: the calling thread acts as that of both dispatchers.
class InlineService {
public:
    InlineService();
    ~InlineService();
    InlineService(const InlineService&) = delete;
    InlineService& operator=(const InlineService&) = delete;

    const std::shared_ptr<testing_host::RecordingFactory> factory = std::make_shared<testing_host::RecordingFactory>();
    std::shared_ptr<ZelUnified::ConfigService> service;
    std::shared_ptr<ZelUnified::ConfigFeatureSet> featureSet;
};

ZelUnified::ConfigMap makeValues(SyntheticKeys& generator, std::size_t count);

std::shared_ptr<ZelUnified::InMemoryConfigStore> makeStore(const std::string& name, int priority,
                                                           const ZelUnified::ConfigMap& values);

} // namespace bench
