#pragma once

#include <zel/HostExport.h>

namespace ZelUnified {

/// Stores data for other plug-ins. The factory holds and returns the object that was set; the host calls none of its
/// operations.
class LUMORA_HOST_API IDataPersistor {
public:
    virtual ~IDataPersistor() = default;
};

} // namespace ZelUnified
