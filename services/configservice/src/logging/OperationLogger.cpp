#include "OperationLogger.h"

namespace ZelUnified {

OperationLogger::OperationLogger(std::string_view loggedClass)
    : logger(ZelLogger_getLogger(std::string("ConfigService-").append(loggedClass))), className(loggedClass) {}

std::string OperationLogger::nameOperation(std::string_view function) const {
    const auto scope = std::string("ZelUnified::").append(className).append("::");
    if (function.starts_with(scope)) {
        return std::string(function);
    }
    const auto separator = function.rfind("::");
    return scope + std::string(separator == function.npos ? function : function.substr(separator + 2));
}

void ZelLog(const OperationLogger& logger, ZelLogLevel level, const char* file, int line, std::string_view function,
            std::string_view text) {
    ::ZelLog(logger.getLogger(), level, file, line, logger.nameOperation(function), text);
}

void ZelLog(const OperationLogger& logger, ZelLogLevel level, const char* file, int line, std::string_view function,
            std::wstring_view text) {
    ::ZelLog(logger.getLogger(), level, file, line, logger.nameOperation(function), text);
}

} // namespace ZelUnified
