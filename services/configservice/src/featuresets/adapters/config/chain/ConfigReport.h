#pragma once

#include "StoreChain.h"
#include "logging/LogPlace.h"

#include <functional>
#include <string>

namespace ZelUnified {

class XmlWriter;

/// Builds the parts of the XML text of a problem report: the values of every store, without the sensitive keys, and the
/// data files of other services, read from disk.
class ConfigReport {
public:
    using IsSensitive = std::function<bool(const std::wstring& key)>;

    /// Returns the element "AllMemoryConfigs", or an empty string if the writer cannot be created. Leaves out stores
    /// without keys and the shipped defaults, which are the same on every installation. Writes keys unchanged, even if
    /// they are not valid XML names. `place` is the caller's, for the log.
    static std::wstring describeStores(const StoreChain::Stores& stores, const IsSensitive& isSensitive,
                                       const LogPlace& place);

    /// Returns the data files without their XML declarations. Logs and leaves out a file that cannot be read; the host
    /// reports an empty file as unreadable. Log lines show this function's name, so it is the name of the manager's
    /// operation.
    static std::wstring getConfigForPRTFromFile();

private:
    static void writeStore(XmlWriter& writer, ConfigStore& store, const IsSensitive& isSensitive,
                           const LogPlace& place);
};

} // namespace ZelUnified
