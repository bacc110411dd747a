#pragma once

#include <unified/FeatureSet.h>

#include <string>

namespace host_tests {

/// The feature set of the test plug-in. Its visibility makes the type equal on both sides.
class [[gnu::visibility("default")]] PluginFeatureSet : public ZelUnified::FeatureSet {
public:
    /// Returns how often the library's entry point was called with this factory.
    virtual int getEntryCalls() const = 0;
    /// Returns true if a lookup of this interface inside the entry point succeeded.
    virtual bool wasFoundInsideTheEntry() const = 0;
};

} // namespace host_tests
