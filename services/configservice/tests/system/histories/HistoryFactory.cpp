#include "HistoryFactory.h"

namespace config_model {

HistoryFactory::HistoryFactory(HistoryClock& clock)
    : servicesDispatcher(std::make_shared<RecordingServicesDispatcher>(clock)),
      backgroundDispatcher(std::make_shared<RecordingTaskDispatcher>(clock)) {}

} // namespace config_model
