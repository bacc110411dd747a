#pragma once

#include <kyr/AnnotatedMutex.h>
#include <kyr/LockGuard.h>
#include <unified/ServicesDispatcher.h>
#include <unified/UnifiedBusinessObject.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

namespace ZelUnified {

class UnifiedFactory;

/// Base class of all public objects: holds the observer list, the notifier set and the guid, and checks the calling
/// thread.
class LUMORA_HOST_API UnifiedBusinessObjectImpl : public virtual UnifiedBusinessObject {
public:
    void addObserver(std::weak_ptr<UnifiedBusinessObjectObserver> observer) override;
    void removeObserver(std::weak_ptr<UnifiedBusinessObjectObserver> observer) override;
    std::shared_ptr<UnifiedBusinessObjectNotifiers> getUnifiedBusinessObjectNotifiers() override;
    std::string getGuid() override;
    std::string toString() override;

protected:
    /// `objectClass` must be a literal; logs and toString() show it.
    UnifiedBusinessObjectImpl(const std::shared_ptr<UnifiedFactory>& factory, const char* objectClass);
    /// With `enforceUpdateAccess` false, any thread may use the object until commitToServicesDispatcher().
    UnifiedBusinessObjectImpl(const std::shared_ptr<UnifiedFactory>& factory, bool enforceUpdateAccess,
                              const char* objectClass);

    /// Checks the calling thread; the first statement of every guarded operation. On another thread than the services
    /// dispatcher's it logs the operation, the object and the thread, and throws UpdateAccessError if `enforce` is
    /// true. The default argument is the caller's name.
    void EnsureUpdateAccess(bool enforce, const char* operation = __builtin_FUNCTION()) const {
        if (dispatcher && dispatcher->checkForUpdateAccess()) {
            return;
        }
        refuseUpdateAccess(enforce, operation);
    }

    /// Creates the notifier set of the most derived interface through initNotifiersOnce(). Called on each request for
    /// the set.
    virtual void initNotifiers() = 0;
    /// Binds the object to the services dispatcher's thread from here on.
    virtual void commitToServicesDispatcher();

    /// Returns the notifier set of the most derived interface; null before initNotifiers().
    std::shared_ptr<UnifiedBusinessObjectNotifiers> getNotifiers() const;

    /// Creates the notifier set if there is none, and passes it to `addOwnObserver`, which registers it with the
    /// addObserver() of the object's own interface. If that throws, the object keeps no set.
    template <class Notifiers, class AddOwnObserver>
    void initNotifiersOnce(AddOwnObserver addOwnObserver) {
        const KyrCoreUtils::LockGuard lock(observersMutex);
        if (notifiers) {
            return;
        }
        const auto made = std::make_shared<Notifiers>();
        notifiers = made;
        try {
            addOwnObserver(made);
        } catch (...) {
            notifiers.reset();
            throw;
        }
    }

    /// Calls `operation` on every living observer of type `Observer`, with no lock held. An exception ends the pass and
    /// reaches the caller.
    template <class Observer>
    void fire(void (Observer::*operation)()) {
        if (!everHadObservers.load()) {
            return;
        }
        for (const auto& observer : collectObservers<Observer>()) {
            ((*observer).*operation)();
        }
    }

private:
    /// An observer with the result of its last type query: querying the type costs more than calling the observer.
    struct Entry {
        /// Returns the observer as `Observer`; null if it is not one. The caller must keep the observer alive.
        template <class Observer>
        Observer* as(UnifiedBusinessObjectObserver& observer) {
            if (kind != &typeid(Observer)) {
                asKind = dynamic_cast<Observer*>(&observer);
                kind = &typeid(Observer);
            }
            return static_cast<Observer*>(asKind);
        }

        std::weak_ptr<UnifiedBusinessObjectObserver> known;
        const std::type_info* kind = nullptr;
        void* asKind = nullptr;
    };

    /// Returns the living observers of one type and removes expired ones. The last entry replaces an expired one, so
    /// the order of the list may change.
    template <class Observer>
    std::vector<std::shared_ptr<Observer>> collectObservers() {
        std::vector<std::shared_ptr<Observer>> collected;
        std::vector<std::shared_ptr<UnifiedBusinessObjectObserver>> held; // not destroyed under the lock
        const KyrCoreUtils::LockGuard lock(observersMutex);
        collected.reserve(observers.size());
        held.reserve(observers.size());
        std::size_t alive = observers.size();
        for (std::size_t i = 0; i < alive;) {
            auto observer = observers[i].known.lock();
            if (!observer) {
                std::swap(observers[i], observers[--alive]);
                continue;
            }
            if (auto* const matching = observers[i].template as<Observer>(*observer)) {
                collected.emplace_back(std::move(observer), matching);
            } else {
                held.push_back(std::move(observer));
            }
            ++i;
        }
        observers.resize(alive);
        return collected;
    }

    void refuseUpdateAccess(bool enforce, const char* operation) const;
    std::string describe() const;
    const std::string& requireGuid() const LUMORA_REQUIRES(observersMutex);
    std::vector<std::shared_ptr<UnifiedBusinessObjectObserver>> lockObservers() const LUMORA_REQUIRES(observersMutex);

    const std::shared_ptr<Processing::ServicesDispatcher> dispatcher;
    const char* const className;
    std::atomic<bool> enforced;
    std::atomic<bool> everHadObservers = false; ///< Cheap first test: most objects are never observed.
    /// Never held during a callback. Recursive because initNotifiersOnce() holds it while it calls addObserver(), so
    /// that no thread receives a set that is not registered yet.
    mutable KyrCoreUtils::AnnotatedMutex<std::recursive_mutex> observersMutex;
    std::vector<Entry> observers LUMORA_GUARDED_BY(observersMutex);
    std::shared_ptr<UnifiedBusinessObjectNotifiers> notifiers LUMORA_GUARDED_BY(observersMutex);
    /// Created on the first request; most objects never need it.
    mutable std::unique_ptr<const std::string> guid LUMORA_GUARDED_BY(observersMutex);
};

} // namespace ZelUnified
