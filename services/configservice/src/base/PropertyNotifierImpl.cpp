#include "PropertyNotifierImpl.h"

#include <cassert>

namespace ZelUnified {

PropertyNotifierImpl::PropertyNotifierImpl() : notifierConnections(std::make_shared<Connection::List>()) {}

std::weak_ptr<PropertyNotifierConnection> PropertyNotifierImpl::connect(std::function<void()> callback) {
    assert(notifierConnections);
    const auto connection = std::make_shared<Connection>(callback, notifierConnections);
    connection->connect();
    return connection;
}

void PropertyNotifierImpl::fire() {
    assert(notifierConnections);
    // Uses no member from here on: a callback may change the list or destroy this notifier.
    const Connection::List pass = *notifierConnections;
    for (const auto& connection : pass) {
        if (connection->connected()) {
            const auto callback = connection->getFxn();
            callback();
        }
    }
}

bool PropertyNotifierImpl::isEmpty() const {
    assert(notifierConnections);
    return notifierConnections->empty();
}

} // namespace ZelUnified
