#pragma once

#include <unified/PropertyNotifierConnection.h>

#include <functional>
#include <memory>

namespace ZelUnified {

/// A signal for one property of one object. Call on the services dispatcher's thread.
class LUMORA_HOST_API PropertyNotifier {
public:
    /// Connects `callback`, which is called after each change until it is disconnected or the notifier is destroyed.
    /// The callback may connect and disconnect on this notifier: a callback that it adds or removes is not called in
    /// the current pass. The notifier owns the connection; the returned handle does not keep it alive.
    virtual std::weak_ptr<PropertyNotifierConnection> connect(std::function<void()> callback) = 0;
    virtual ~PropertyNotifier() = default;
};

} // namespace ZelUnified
