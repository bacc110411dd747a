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

/// What all services share. Services dispatcher's thread, but for the observer operations and
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
    /// The name of this layer; the name that was handed to the constructor is what logs show.
    virtual std::string getClassName();

    /// Does not fire.
    void setBulkUpdateInProgress(bool flag);

private:
    bool BulkUpdateInProgress = false;
};

#if defined(__clang__)
#pragma clang diagnostic pop
#endif

} // namespace ZelUnified
