#pragma once

#include "PropertyNotifierConnectionImpl.h"

#include <unified/PropertyNotifier.h>

#include <functional>
#include <memory>

namespace ZelUnified {

/// The signal of one property. Only the owner of the notifier sees fire(). Copies share one list of connections; what
/// was moved from has none and is used no more. Services dispatcher's thread; no lock, no check of the thread.
class PropertyNotifierImpl : public virtual PropertyNotifier,
                             public std::enable_shared_from_this<PropertyNotifierImpl> {
public:
    using Connection = PropertyNotifierConnectionImpl<std::function<void()>, PropertyNotifierImpl>;

    PropertyNotifierImpl();

    std::weak_ptr<PropertyNotifierConnection> connect(std::function<void()> callback) override;

    /// Calls every callback that was connected at the start and still is when its turn comes. An exception ends the
    /// pass. A callback may destroy the notifier.
    void fire();
    bool isEmpty() const;

private:
    std::shared_ptr<Connection::List> notifierConnections;
};

} // namespace ZelUnified
