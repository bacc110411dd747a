#pragma once

#include "UnifiedServiceImpl.h"

#include <ConfigService.h>

#include <memory>

namespace ZelUnified {

#if defined(__clang__)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Woverloaded-virtual" // as in UnifiedService
#endif

/// Holds the property of the service. Only the owner calls the setter and fireConfigReady(); the setter does not fire.
/// Call on the services dispatcher's thread, except the constructor and the observer operations.
class ConfigServiceBaseImpl : public UnifiedServiceImpl, public virtual ConfigService {
public:
    void addObserver(std::weak_ptr<ConfigServiceObserver> observer) override;
    void removeObserver(std::weak_ptr<ConfigServiceObserver> observer) override;
    std::shared_ptr<ConfigServiceNotifiers> getConfigServiceNotifiers() override;

    bool getConfigReady() override;
    virtual void setConfigReady(bool flag);
    void fireConfigReady();

protected:
    explicit ConfigServiceBaseImpl(const std::shared_ptr<UnifiedFactory>& factory);

    void initNotifiers() override;

private:
    bool ConfigReady = false;
};

#if defined(__clang__)
#pragma clang diagnostic pop
#endif

} // namespace ZelUnified
