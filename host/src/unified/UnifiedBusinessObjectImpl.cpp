#include "kyr/HexDigits.h"

#include <kyr/LockGuard.h>
#include <unified/UnifiedBusinessObjectImpl.h>
#include <unified/UnifiedFactory.h>
#include <unified/UpdateAccessError.h>
#include <zel/ZelLog.h>

#include <openssl/rand.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace ZelUnified {

namespace {

ZelLogger& objectLogger = ZelLogger_getLogger("UnifiedFactory-BusinessObject");

/// Returns a random version 4 UUID in lower case. Throws std::runtime_error if no random bytes are available.
std::string makeRandomUuid() {
    std::array<unsigned char, 16> bytes{};
    if (RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) != 1) {
        throw std::runtime_error("no random bytes for a UUID");
    }
    bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0f) | 0x40); // version 4
    bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3f) | 0x80); // variant of RFC 4122

    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) {
            text += '-';
        }
        KyrCoreUtils::appendHex(text, bytes[i]);
    }
    return text;
}

} // namespace

UnifiedBusinessObjectImpl::UnifiedBusinessObjectImpl(const std::shared_ptr<UnifiedFactory>& factory,
                                                     const char* objectClass)
    : UnifiedBusinessObjectImpl(factory, true, objectClass) {}

UnifiedBusinessObjectImpl::UnifiedBusinessObjectImpl(const std::shared_ptr<UnifiedFactory>& factory,
                                                     bool enforceUpdateAccess, const char* objectClass)
    : dispatcher(factory ? factory->getServicesDispatcher() : nullptr),
      className(objectClass),
      enforced(enforceUpdateAccess) {}

void UnifiedBusinessObjectImpl::addObserver(std::weak_ptr<UnifiedBusinessObjectObserver> observer) {
    const auto added = observer.lock();
    if (!added) {
        return;
    }
    std::vector<std::shared_ptr<UnifiedBusinessObjectObserver>> known;
    const KyrCoreUtils::LockGuard lock(observersMutex);
    known = lockObservers();
    if (std::find(known.begin(), known.end(), added) == known.end()) {
        observers.push_back({std::move(observer)});
        everHadObservers = true;
    }
}

void UnifiedBusinessObjectImpl::removeObserver(std::weak_ptr<UnifiedBusinessObjectObserver> observer) {
    const auto removed = observer.lock();
    if (!removed) {
        return;
    }
    std::vector<std::shared_ptr<UnifiedBusinessObjectObserver>> known;
    const KyrCoreUtils::LockGuard lock(observersMutex);
    known = lockObservers();
    if (const auto found = std::find(known.begin(), known.end(), removed); found != known.end()) {
        observers.erase(observers.begin() + (found - known.begin()));
    }
}

/// The caller must release the returned pointers after the unlock, because that may destroy an observer.
std::vector<std::shared_ptr<UnifiedBusinessObjectObserver>> UnifiedBusinessObjectImpl::lockObservers() const {
    std::vector<std::shared_ptr<UnifiedBusinessObjectObserver>> locked;
    locked.reserve(observers.size());
    for (const auto& observer : observers) {
        locked.push_back(observer.known.lock());
    }
    return locked;
}

std::shared_ptr<UnifiedBusinessObjectNotifiers> UnifiedBusinessObjectImpl::getUnifiedBusinessObjectNotifiers() {
    initNotifiers();
    return getNotifiers();
}

std::string UnifiedBusinessObjectImpl::getGuid() {
    const KyrCoreUtils::LockGuard lock(observersMutex);
    return requireGuid();
}

std::string UnifiedBusinessObjectImpl::toString() {
    return describe();
}

std::string UnifiedBusinessObjectImpl::describe() const {
    const KyrCoreUtils::LockGuard lock(observersMutex);
    return std::string(className) + " {" + requireGuid() + "}";
}

const std::string& UnifiedBusinessObjectImpl::requireGuid() const {
    if (!guid) {
        guid = std::make_unique<const std::string>(makeRandomUuid());
    }
    return *guid;
}

void UnifiedBusinessObjectImpl::commitToServicesDispatcher() {
    enforced = true;
}

std::shared_ptr<UnifiedBusinessObjectNotifiers> UnifiedBusinessObjectImpl::getNotifiers() const {
    const KyrCoreUtils::LockGuard lock(observersMutex);
    return notifiers;
}

void UnifiedBusinessObjectImpl::refuseUpdateAccess(bool enforce, const char* operation) const {
    if (!enforced) {
        return;
    }
    std::ostringstream text;
    text << operation << " of " << describe() << " called on thread " << std::this_thread::get_id()
         << ", which is not the services dispatcher's";
    ZelLog(objectLogger, ZelLogLevel::Error, ZEL_HERE, text.str());
    if (enforce) {
        throw UpdateAccessError(text.str());
    }
}

} // namespace ZelUnified
