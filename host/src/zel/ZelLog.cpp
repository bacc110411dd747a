#include "LogDispatcher.h"
#include "PiiMask.h"

#include <kyr/AnnotatedMutex.h>
#include <kyr/LockGuard.h>
#include <kyr/StringUtils.h>
#include <zel/ZelLog.h>

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

using zel::logging::LogDispatcher;

/// A named logger. All other logging state is shared by the process.
class ZelLogger {
public:
    explicit ZelLogger(std::string loggerName) : name(std::move(loggerName)) {}

    const std::string& getName() const noexcept { return name; }

private:
    const std::string name;
};

ZelLogger& ZelLogger_getLogger(std::string_view name) {
    struct Loggers {
        KyrCoreUtils::AnnotatedMutex<> mutex;
        std::map<std::string, std::unique_ptr<ZelLogger>, std::less<>> byName LUMORA_GUARDED_BY(mutex);
    };
    // Never destroyed: static objects of other libraries may log in their destructors.
    static Loggers& loggers = *new Loggers;

    const KyrCoreUtils::LockGuard lock(loggers.mutex);
    auto found = loggers.byName.find(name);
    if (found == loggers.byName.end()) {
        found = loggers.byName.emplace(name, std::make_unique<ZelLogger>(std::string(name))).first;
    }
    return *found->second;
}

bool ZelLog_isDebugEnabled(const ZelLogger&) noexcept {
    return LogDispatcher::instance().isDebugEnabled();
}

void ZelLog(ZelLogger& logger, ZelLogLevel level, const char* file, int line, std::string_view function,
            std::string_view text) {
    LogDispatcher& dispatcher = LogDispatcher::instance();
    if (level == ZelLogLevel::Debug && !dispatcher.isDebugEnabled()) {
        return;
    }
    dispatcher.dispatch(
        {logger.getName(), level, file != nullptr ? file : "", line, std::string(function), std::string(text)});
}

void ZelLog(ZelLogger& logger, ZelLogLevel level, const char* file, int line, std::string_view function,
            std::wstring_view text) {
    if (level == ZelLogLevel::Debug && !ZelLog_isDebugEnabled(logger)) {
        return;
    }
    ZelLog(logger, level, file, line, function, KyrCoreUtils::toString(text));
}

std::string ZelLogger_replacePIIData(std::string_view text) {
    return zel::logging::maskPersonalData(text);
}

bool ZelLogger_mayHoldPIIData(std::wstring_view text) noexcept {
    return zel::logging::mayHoldPersonalData(text);
}
