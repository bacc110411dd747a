#include "UnifiedServiceNotifiersImpl.h"

namespace ZelUnified {

std::shared_ptr<PropertyNotifier> UnifiedServiceNotifiersImpl::getBulkUpdateInProgressNotifier() {
    return request(bulkUpdateInProgressNotifier);
}

void UnifiedServiceNotifiersImpl::OnBulkUpdateInProgressChanged() {
    fireIfRequested(bulkUpdateInProgressNotifier);
}

void UnifiedServiceNotifiersImpl::OnInfoChanged() {
    fireIfRequested(bulkUpdateInProgressNotifier);
}

} // namespace ZelUnified
