#pragma once

#include "PropertyNotifierConnectionImpl.h"

#include <unified/PropertyNotifier.h>

#include <functional>
#include <memory>

namespace ZelUnified {

/// The signal of one property. Only the owner of the notifier calls fire(). Copies share one list of connections; a
/// moved-from notifier has no list and must not be used. Call on the services dispatcher's thread; the class has no
/// lock and does not check the thread.
class PropertyNotifierImpl : public virtual PropertyNotifier,
                             public std::enable_shared_from_this<PropertyNotifierImpl> {
public:
    using Connection = PropertyNotifierConnectionImpl<std::function<void()>, PropertyNotifierImpl>;

    PropertyNotifierImpl();

    std::weak_ptr<PropertyNotifierConnection> connect(std::function<void()> callback) override;

    /// Calls each callback that was connected when fire() began and is still connected at its turn. An exception ends
    /// the pass and reaches the caller. A callback may destroy the notifier.
    void fire();
    bool isEmpty() const;

private:
    std::shared_ptr<Connection::List> notifierConnections;
};

} // namespace ZelUnified
