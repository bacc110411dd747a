#pragma once

#include <unified/UnifiedBusinessObjectImpl.h>
#include <unified/UnifiedService.h>

#include <memory>
#include <string>

namespace ZelUnified {

#if defined(__clang__)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Woverloaded-virtual" // as in UnifiedService
#endif

/// Base class of all services. Call on the services dispatcher's thread, except the observer operations and
/// getBulkUpdateInProgress().
class UnifiedServiceImpl : public UnifiedBusinessObjectImpl, public virtual UnifiedService {
public:
    void addObserver(std::weak_ptr<UnifiedServiceObserver> observer) override;
    void removeObserver(std::weak_ptr<UnifiedServiceObserver> observer) override;
    std::shared_ptr<UnifiedServiceNotifiers> getUnifiedServiceNotifiers() override;
    bool getBulkUpdateInProgress() override;

    void fireOnBulkUpdateInProgressChanged();

protected:
    UnifiedServiceImpl(const std::shared_ptr<UnifiedFactory>& factory, const char* name);
    UnifiedServiceImpl(const std::shared_ptr<UnifiedFactory>& factory, bool enforceUpdateAccess, const char* name);

    void initNotifiers() override;
    void commitToServicesDispatcher() override;
    /// Returns the name of this class. Logs show the name that was passed to the constructor instead.
    virtual std::string getClassName();

    /// Sets the property without firing.
    void setBulkUpdateInProgress(bool flag);

private:
    bool BulkUpdateInProgress = false;
};

#if defined(__clang__)
#pragma clang diagnostic pop
#endif

} // namespace ZelUnified
