#pragma once

#include "RecordingDispatchers.h"

#include <RecordingFactory.h>

#include <memory>

namespace config_model {

/// A factory with these dispatchers.
class HistoryFactory final : public testing_host::RecordingFactory {
public:
    explicit HistoryFactory(HistoryClock& clock);

    std::shared_ptr<ZelUnified::Processing::ServicesDispatcher> getServicesDispatcher() override {
        return recordedServices;
    }
    std::shared_ptr<ZelUnified::Processing::TaskDispatcher> getBackgroundDispatcher() override {
        return recordedBackground;
    }

    const std::shared_ptr<RecordingServicesDispatcher> recordedServices;
    const std::shared_ptr<RecordingTaskDispatcher> recordedBackground;
};

} // namespace config_model
