#pragma once

#include <unified/UnifiedBusinessObjectNotifiers.h>
#include <unified/UnifiedBusinessObjectObserver.h>
#include <zel/HostExport.h>

#include <memory>
#include <string>

namespace ZelUnified {

/// Base class of every public object. Interfaces inherit it virtually; each interface implements getInterfaceName(), so
/// implementing classes need not. Getters and setters of properties must be called on the services dispatcher's thread;
/// on any other thread they throw UpdateAccessError. The observer operations, getGuid() and toString() may be called on
/// any thread.
class LUMORA_HOST_API UnifiedBusinessObject {
public:
    virtual ~UnifiedBusinessObject() = default;

    /// Adds the observer. Ignores an expired observer and one that is already in the list.
    virtual void addObserver(std::weak_ptr<UnifiedBusinessObjectObserver> observer) = 0;
    /// Removes the observer. During a pass, an observer removed by another observer is still called in that pass.
    virtual void removeObserver(std::weak_ptr<UnifiedBusinessObjectObserver> observer) = 0;
    virtual std::shared_ptr<UnifiedBusinessObjectNotifiers> getUnifiedBusinessObjectNotifiers() = 0;
    /// Returns a random version 4 UUID in lower case, created on the first request.
    virtual std::string getGuid() = 0;
    /// Returns the class name and the guid, never the value of a property.
    virtual std::string toString() = 0;
    virtual std::string getInterfaceName() { return "UnifiedBusinessObject"; }
};

} // namespace ZelUnified
