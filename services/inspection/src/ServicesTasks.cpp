#include "ServicesTasks.h"

#include <kyr/FunctionTask.h>

#include <utility>

namespace inspection {

namespace {

using Services = std::shared_ptr<ZelUnified::Processing::ServicesDispatcher>;

void postSlice(const Services& services, const std::string& name,
               const std::shared_ptr<const std::function<bool()>>& slice) {
    services->enqueue(std::make_shared<KyrCoreUtils::FunctionTask>(
                          [services, name, slice] {
                              if ((*slice)()) {
                                  postSlice(services, name, slice);
                              }
                          },
                          name),
                      false);
}

} // namespace

ServicesTasks::ServicesTasks(const std::shared_ptr<ZelUnified::UnifiedFactory>& factory)
    : services(factory->getServicesDispatcher()), background(factory->getBackgroundDispatcher()) {}

void ServicesTasks::run(const std::string& name, std::function<void()> work) const {
    services->enqueue(std::make_shared<KyrCoreUtils::FunctionTask>(std::move(work), name), false);
}

void ServicesTasks::runSlices(const std::string& name, std::function<bool()> slice) const {
    postSlice(services, name, std::make_shared<const std::function<bool()>>(std::move(slice)));
}

void ServicesTasks::runInBackground(const std::string& name, std::function<void()> work) const {
    background->enqueue(std::move(work), name);
}

} // namespace inspection
