#pragma once

#include <string>

namespace zel {

/// A unit of work for a dispatcher. The dispatcher runs it once and destroys it, and holds no lock during either.
class Task {
public:
    virtual ~Task() = default;

    virtual void run() = 0;
    /// Returns a label for diagnostics.
    virtual std::string getName() const = 0;
};

} // namespace zel
