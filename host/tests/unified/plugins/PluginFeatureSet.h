#pragma once

#include <unified/FeatureSet.h>

#include <string>

namespace host_tests {

/// What the test plug-in provides. Its visibility lets both sides agree on the type.
class [[gnu::visibility("default")]] PluginFeatureSet : public ZelUnified::FeatureSet {
public:
    /// How often the library's entry was called with this factory.
    virtual int getEntryCalls() const = 0;
    /// Whether a lookup of this interface, made from inside the entry, gave something.
    virtual bool wasFoundInsideTheEntry() const = 0;
};

} // namespace host_tests
