#pragma once

#include <unified/PropertyNotifierConnection.h>

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace ZelUnified {

/// One callback in the list of a notifier. The list owns the connection; the connection holds a weak pointer to the
/// list. `Notifier` only makes the connections of different kinds of notifier distinct types. Call on the services
/// dispatcher's thread.
template <class Fxn, class Notifier>
class PropertyNotifierConnectionImpl final
    : public PropertyNotifierConnection,
      public std::enable_shared_from_this<PropertyNotifierConnectionImpl<Fxn, Notifier>> {
public:
    using List = std::vector<std::shared_ptr<PropertyNotifierConnectionImpl>>;

    PropertyNotifierConnectionImpl(const Fxn& function, const std::weak_ptr<List>& list)
        : callback(function), connections(list) {}

    /// Appends the connection to the list, even if the list contains it already. Does nothing if the list has expired.
    void connect() {
        if (const auto list = connections.lock()) {
            list->push_back(this->shared_from_this());
            isConnected = true;
        }
    }

    /// Removes the first entry of this connection from the list.
    void disconnect() override {
        // The entry may be the last owner: keeps this object alive until the flag is written.
        std::shared_ptr<PropertyNotifierConnectionImpl> self;
        if (const auto list = connections.lock(); list && !list->empty()) {
            self = this->shared_from_this();
            if (const auto found = std::find(list->begin(), list->end(), self); found != list->end()) {
                list->erase(found);
            }
        }
        isConnected = false;
    }

    bool connected() override { return isConnected; }

    Fxn getFxn() const { return callback; }

private:
    Fxn callback;
    std::weak_ptr<List> connections;
    bool isConnected = false;
};

} // namespace ZelUnified
