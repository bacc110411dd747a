#pragma once

#include <string>

namespace zel {

/// A piece of work for a dispatcher. It runs once, and is destroyed, with no lock of the dispatcher held.
class Task {
public:
    virtual ~Task() = default;

    virtual void run() = 0;
    /// A label for diagnostics.
    virtual std::string getName() const = 0;
};

} // namespace zel
