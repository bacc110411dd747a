#include "HistoryFactory.h"

namespace config_model {

HistoryFactory::HistoryFactory(HistoryClock& clock)
    : services(std::make_shared<RecordingServicesDispatcher>(clock)),
      background(std::make_shared<RecordingTaskDispatcher>(clock)) {}

} // namespace config_model
