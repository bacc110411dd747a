#pragma once

#include "LogPlace.h"

#include <zel/ZelLog.h>

#include <string>
#include <string_view>

namespace ZelUnified {

/// Logs the operations of one class. A helper class that implements some of them uses the same object, so the line
/// names the operation as a member of the class, not of the helper. Immutable, so any thread may use it.
class OperationLogger {
public:
    /// Uses the host's logger "ConfigService-" + `loggedClass`. `loggedClass` is a literal without a namespace.
    explicit OperationLogger(std::string_view loggedClass);

    ZelLogger& getLogger() const noexcept { return logger; }
    /// Returns the name of `function` as a member of the class: "ZelUnified::CachedStores::addCachedConfigStore"
    /// becomes "ZelUnified::ConfigAdapter::addCachedConfigStore". Returns members of nested classes unchanged.
    std::string nameOperation(std::string_view function) const;

private:
    ZelLogger& logger;
    const std::string_view className; ///< Not a string: threads that outlive main() may still log.
};

inline bool ZelLog_isDebugEnabled(const OperationLogger& logger) noexcept {
    return ::ZelLog_isDebugEnabled(logger.getLogger());
}

/// Same arguments as the host's functions of this name.
void ZelLog(const OperationLogger& logger, ZelLogLevel level, const char* file, int line, std::string_view function,
            std::string_view text);
void ZelLog(const OperationLogger& logger, ZelLogLevel level, const char* file, int line, std::string_view function,
            std::wstring_view text);
/// For a helper that logs on behalf of the operation at `place`.
template <class Text>
void ZelLog(const OperationLogger& logger, ZelLogLevel level, const LogPlace& place, const Text& text) {
    ZelLog(logger, level, place.file, place.line, place.function, text);
}

} // namespace ZelUnified
