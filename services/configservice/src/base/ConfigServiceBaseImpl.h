#pragma once

#include "UnifiedServiceImpl.h"

#include <ConfigService.h>

#include <memory>

namespace ZelUnified {

#if defined(__clang__)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Woverloaded-virtual" // as in UnifiedService
#endif

/// The property of the service, with the setter and the firing that belong to its owner. The setter does not fire.
/// Services dispatcher's thread, but for the constructor and the observer operations.
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
