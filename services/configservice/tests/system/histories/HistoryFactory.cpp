#include "HistoryFactory.h"

namespace config_model {

HistoryFactory::HistoryFactory(HistoryClock& clock)
    : recordedServices(std::make_shared<RecordingServicesDispatcher>(clock)),
      recordedBackground(std::make_shared<RecordingTaskDispatcher>(clock)) {}

} // namespace config_model
