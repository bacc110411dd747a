#pragma once

#include <unified/ServiceFactory.h>
#include <unified/UnifiedFactoryImpl.h>

#include <memory>

namespace ZelUnified {

/// Implements the service factory with a UnifiedFactory whose services dispatcher is pumped. Holds that factory by
/// shared pointer.
class LUMORA_HOST_API ServiceFactoryImpl final : public ServiceFactory {
public:
    explicit ServiceFactoryImpl(std::shared_ptr<UnifiedFactoryImpl> unifiedFactory);

    std::shared_ptr<UnifiedService> getService(unsigned int id) override;
    void reset() override;
    void setDispatcherCallback(std::shared_ptr<ServicesDispatcherCallback> callback) override;
    void resetDispatcherThread() override;
    bool waitForDispatcherTask(std::chrono::milliseconds timeout) override;
    bool pumpNextDispatcherTask() override;
    void pumpAllDispatcherTasks() override;

private:
    const std::shared_ptr<UnifiedFactoryImpl> factory;
};

} // namespace ZelUnified
