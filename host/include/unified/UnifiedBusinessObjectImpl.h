#pragma once

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

/// What all public objects share: the observer list, the notifier set, the guid and the guard of the thread.
class LUMORA_HOST_API UnifiedBusinessObjectImpl : public virtual UnifiedBusinessObject {
public:
    void addObserver(std::weak_ptr<UnifiedBusinessObjectObserver> observer) override;
    void removeObserver(std::weak_ptr<UnifiedBusinessObjectObserver> observer) override;
    std::shared_ptr<UnifiedBusinessObjectNotifiers> getUnifiedBusinessObjectNotifiers() override;
    std::string getGuid() override;
    std::string toString() override;

protected:
    /// `objectClass`, a literal, is what logs and toString() show.
    UnifiedBusinessObjectImpl(const std::shared_ptr<UnifiedFactory>& factory, const char* objectClass);
    /// `enforceUpdateAccess` false: any thread may use the object until commitToServicesDispatcher().
    UnifiedBusinessObjectImpl(const std::shared_ptr<UnifiedFactory>& factory, bool enforceUpdateAccess,
                              const char* objectClass);

    /// First statement of every guarded operation. On another thread than the services dispatcher's it logs which
    /// operation of which object was called where, and with `enforce` throws UpdateAccessError. The default argument
    /// names the caller.
    void EnsureUpdateAccess(bool enforce, const char* operation = __builtin_FUNCTION()) const {
        if (dispatcher && dispatcher->checkForUpdateAccess()) {
            return;
        }
        refuseUpdateAccess(enforce, operation);
    }

    /// Makes the notifier set of the most derived interface by initNotifiersOnce(). Called at each request.
    virtual void initNotifiers() = 0;
    /// From here on the object belongs to the services dispatcher's thread.
    virtual void commitToServicesDispatcher();

    /// The set of the most derived interface; null before initNotifiers().
    std::shared_ptr<UnifiedBusinessObjectNotifiers> getNotifiers() const;

    /// Creates the notifier set unless there is one, and calls `addOwnObserver` with it, which registers it through the
    /// addObserver() of the object's own interface. If that throws, there is no set.
    template <class Notifiers, class AddOwnObserver>
    void initNotifiersOnce(AddOwnObserver addOwnObserver) {
        const std::lock_guard lock(observersMutex);
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

    /// Calls `operation` on every living observer that is an `Observer`, with no lock held. An exception ends the walk.
    template <class Observer>
    void fire(void (Observer::*operation)()) {
        for (const auto& observer : collectObservers<Observer>()) {
            ((*observer).*operation)();
        }
    }

private:
    /// An observer, and what it was when it was last asked for: to ask its type costs more than to call it.
    struct Entry {
        /// Null when the observer, which is alive, is none of that kind.
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

    /// The living observers of one kind. Dead ones are dropped from the list: the last entry takes the place of a dead
    /// one, so the order of the list may change.
    template <class Observer>
    std::vector<std::shared_ptr<Observer>> collectObservers() {
        std::vector<std::shared_ptr<Observer>> collected;
        std::vector<std::shared_ptr<UnifiedBusinessObjectObserver>> held; // none may die under the lock
        const std::lock_guard lock(observersMutex);
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
    const std::string& requireGuid() const;
    std::vector<std::shared_ptr<UnifiedBusinessObjectObserver>> lockObservers() const;

    const std::shared_ptr<Processing::ServicesDispatcher> dispatcher;
    const char* const className;
    std::atomic<bool> enforced;
    /// Guards the next three; never held during a callback. Recursive, because initNotifiersOnce() holds it while it
    /// calls addObserver(): no thread gets a set that is not registered yet.
    mutable std::recursive_mutex observersMutex;
    std::vector<Entry> observers;
    std::shared_ptr<UnifiedBusinessObjectNotifiers> notifiers;
    mutable std::unique_ptr<const std::string> guid; ///< Made at the first request, which most objects never see.
};

} // namespace ZelUnified
