#pragma once

#include <unified/PropertyNotifierConnection.h>

#include <functional>
#include <memory>

namespace ZelUnified {

/// A signal for one property of one object. Services dispatcher's thread.
class LUMORA_HOST_API PropertyNotifier {
public:
    /// The callback is called after each change, until it is disconnected or the notifier is gone. It may connect and
    /// disconnect on this notifier: what it adds is not called in the same pass, what it removes neither. The notifier
    /// owns the connection; the handle does not keep it alive.
    virtual std::weak_ptr<PropertyNotifierConnection> connect(std::function<void()> callback) = 0;
    virtual ~PropertyNotifier() = default;
};

} // namespace ZelUnified
