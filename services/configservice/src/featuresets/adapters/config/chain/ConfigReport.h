#pragma once

#include "StoreChain.h"
#include "logging/LogPlace.h"

#include <functional>
#include <string>

namespace ZelUnified {

class XmlWriter;

/// The parts of the XML text that is attached to a problem report: what every store says, without the sensitive keys,
/// and the data files of other services as they stand on disk.
class ConfigReport {
public:
    using IsSensitive = std::function<bool(const std::wstring& key)>;

    /// The element "AllMemoryConfigs". The shipped defaults, the same on every installation, and stores without keys
    /// are left out. Keys are written as they stand, valid XML names or not. Empty when the writer can't be made.
    /// `place` is the caller's, for the log.
    static std::wstring describeStores(const StoreChain::Stores& stores, const IsSensitive& isSensitive,
                                       const LogPlace& place);

    /// The data files without their XML declarations. One that can't be read is logged and left out. An empty one
    /// raises std::out_of_range. Named after the manager's operation, which is what a log line names.
    static std::wstring getConfigForPRTFromFile();

private:
    static void writeStore(XmlWriter& writer, ConfigStore& store, const IsSensitive& isSensitive,
                           const LogPlace& place);
};

} // namespace ZelUnified
