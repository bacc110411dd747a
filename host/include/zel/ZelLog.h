#pragma once

#include <zel/FunctionName.h>
#include <zel/HostExport.h>

#include <string>
#include <string_view>

/// Numbers are the host's: what a support log shows.
enum class ZelLogLevel : int { Error = 2, Warning = 3, Info = 4, Debug = 5 };

/// A named source of log lines. Obtained from ZelLogger_getLogger(), lives as long as the process.
class ZelLogger;

/// The logger of that name, made at the first request. Any thread.
LUMORA_HOST_API ZelLogger& ZelLogger_getLogger(std::string_view name);

/// Whether a debug line would be written; lines of the other levels always are.
LUMORA_HOST_API bool ZelLog_isDebugEnabled(const ZelLogger& logger) noexcept;

/// Writes one record. `function` reads like "ZelUnified::ConfigAdapter::addConfigStore"; ZEL_HERE gives the three
/// arguments of the place. The text is never taken for a format. Any thread; sinks never call back.
LUMORA_HOST_API void ZelLog(ZelLogger& logger, ZelLogLevel level, const char* file, int line, std::string_view function,
                            std::string_view text);
LUMORA_HOST_API void ZelLog(ZelLogger& logger, ZelLogLevel level, const char* file, int line, std::string_view function,
                            std::wstring_view text);

/// Masks personal data in UTF-8 text: the local part of mail addresses, the users of "sip:" and "tel:", "+" with eight
/// or more digits, user and password of a URL, the user's folder in home paths. Host names, IP addresses and plain
/// numbers stay. The markers don't tell the length of what they hide. One pass; idempotent.
LUMORA_HOST_API std::string ZelLogger_replacePIIData(std::string_view text);
/// False where that would leave the text as it is, so that the caller can spare itself a conversion and a copy; true
/// may be wrong. Allocates nothing.
LUMORA_HOST_API bool ZelLogger_mayHoldPIIData(std::wstring_view text) noexcept;

#if defined(_MSC_VER)
#define ZEL_FUNCTION_SIGNATURE __FUNCSIG__
#else
#define ZEL_FUNCTION_SIGNATURE __PRETTY_FUNCTION__
#endif

/// Source file, line and function name of the place that logs.
#define ZEL_HERE __FILE__, __LINE__, ::zel::logging::functionName(ZEL_FUNCTION_SIGNATURE)
