#pragma once

#include <unified/UnifiedBusinessObject.h>

#include <memory>
#include <string>

namespace ZelUnified {

class ServerHealthInformationNotifiers;
class ServerHealthInformationObserver;

#if defined(__clang__)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Woverloaded-virtual" // as in UnifiedService
#endif

/// The client's information on the state of one server. The headers of other plug-ins refer to it; the host
/// neither provides nor reads one.
class LUMORA_HOST_API ServerHealthInformation : public virtual UnifiedBusinessObject {
public:
    virtual void addObserver(std::weak_ptr<ServerHealthInformationObserver> observer) = 0;
    virtual void removeObserver(std::weak_ptr<ServerHealthInformationObserver> observer) = 0;
    virtual std::shared_ptr<ServerHealthInformationNotifiers> getServerHealthInformationNotifiers() = 0;
    std::string getInterfaceName() override { return "ServerHealthInformation"; }
};

#if defined(__clang__)
#pragma clang diagnostic pop
#endif

} // namespace ZelUnified
