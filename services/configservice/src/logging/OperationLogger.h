#pragma once

#include <zel/ZelLog.h>

#include <string>
#include <string_view>

namespace ZelUnified {

/// Logs the operations of one class. A helper class that implements some of them uses the same object, so the line
/// names the operation as a member of the class, not of the helper. Immutable, so any thread may use it.
class OperationLogger {
public:
    /// Uses the host's logger "ConfigService-" + `className`. `className` has no namespace.
    explicit OperationLogger(std::string_view className);

    ZelLogger& getLogger() const noexcept { return logger; }
    /// Returns the name of `function` as a member of the class: "ZelUnified::CachedStores::addCachedConfigStore"
    /// becomes "ZelUnified::ConfigAdapter::addCachedConfigStore". Returns members of nested classes unchanged.
    std::string nameOperation(std::string_view function) const;

private:
    ZelLogger& logger;
    const std::string scope;
};

inline bool ZelLog_isDebugEnabled(const OperationLogger& logger) noexcept {
    return ::ZelLog_isDebugEnabled(logger.getLogger());
}

/// Same arguments as the host's functions of this name.
void ZelLog(const OperationLogger& logger, ZelLogLevel level, const char* file, int line, std::string_view function,
            std::string_view text);
void ZelLog(const OperationLogger& logger, ZelLogLevel level, const char* file, int line, std::string_view function,
            std::wstring_view text);

} // namespace ZelUnified
