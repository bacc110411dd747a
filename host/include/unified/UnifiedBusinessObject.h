#pragma once

#include <unified/UnifiedBusinessObjectNotifiers.h>
#include <unified/UnifiedBusinessObjectObserver.h>
#include <zel/HostExport.h>

#include <memory>
#include <string>

namespace ZelUnified {

/// Base of every public object. Interfaces inherit it virtually; each interface answers getInterfaceName() itself, so
/// that no implementing class has to. Properties belong to the services dispatcher's thread: getters and setters refuse
/// any other with UpdateAccessError. The observer operations, getGuid() and toString() answer on any thread.
class LUMORA_HOST_API UnifiedBusinessObject {
public:
    virtual ~UnifiedBusinessObject() = default;

    /// Adds once; an empty or known observer is ignored.
    virtual void addObserver(std::weak_ptr<UnifiedBusinessObjectObserver> observer) = 0;
    /// An observer removed by another one during a pass is still called in that pass.
    virtual void removeObserver(std::weak_ptr<UnifiedBusinessObjectObserver> observer) = 0;
    virtual std::shared_ptr<UnifiedBusinessObjectNotifiers> getUnifiedBusinessObjectNotifiers() = 0;
    /// A random version 4 UUID in lower case, made at the first request.
    virtual std::string getGuid() = 0;
    /// Class name and guid; never a property's value.
    virtual std::string toString() = 0;
    virtual std::string getInterfaceName() { return "UnifiedBusinessObject"; }
};

} // namespace ZelUnified
