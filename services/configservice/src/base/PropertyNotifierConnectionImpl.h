#pragma once

#include <unified/PropertyNotifierConnection.h>

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace ZelUnified {

/// One callback on one notifier's list. The list owns it; it knows the list weakly, so neither keeps the other alive.
/// `Notifier` only tells apart the connections of different kinds of notifier. Services dispatcher's thread.
template <class Fxn, class Notifier>
class PropertyNotifierConnectionImpl final
    : public PropertyNotifierConnection,
      public std::enable_shared_from_this<PropertyNotifierConnectionImpl<Fxn, Notifier>> {
public:
    using List = std::vector<std::shared_ptr<PropertyNotifierConnectionImpl>>;

    PropertyNotifierConnectionImpl(const Fxn& function, const std::weak_ptr<List>& list)
        : callback(function), connections(list) {}

    /// Puts the connection on the list's end, also when it stands there already. Does nothing when the list is gone.
    void connect() {
        if (const auto list = connections.lock()) {
            list->push_back(this->shared_from_this());
            isConnected = true;
        }
    }

    /// Takes the first entry of this connection off the list.
    void disconnect() override {
        // The entry may be the last owner, so the object is held until the flag is written.
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
