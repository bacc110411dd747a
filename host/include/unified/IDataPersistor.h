#pragma once

#include <zel/HostExport.h>

namespace ZelUnified {

/// Keeps data for other plug-ins. The factory holds the one it is given and hands it out; its operations are its
/// providers' matter, and nothing here calls one.
class LUMORA_HOST_API IDataPersistor {
public:
    virtual ~IDataPersistor() = default;
};

} // namespace ZelUnified
