#pragma once

#include <zel/FunctionName.h>
#include <zel/HostExport.h>

#include <string>
#include <string_view>

/// The numbers appear in support logs.
enum class ZelLogLevel : int { Error = 2, Warning = 3, Info = 4, Debug = 5 };

/// A named source of log lines. ZelLogger_getLogger() returns it; it is never destroyed.
class ZelLogger;

/// Returns the logger of that name, created on the first request. Any thread.
LUMORA_HOST_API ZelLogger& ZelLogger_getLogger(std::string_view name);

/// Returns true if a debug line would be written; lines of the other levels are always written.
LUMORA_HOST_API bool ZelLog_isDebugEnabled(const ZelLogger& logger) noexcept;

/// Writes one record. `function` is a qualified name such as "ZelUnified::ConfigAdapter::addConfigStore"; ZEL_HERE
/// expands to the arguments `file`, `line` and `function`. The text is never interpreted as a format string. Any
/// thread; sinks never call back.
LUMORA_HOST_API void ZelLog(ZelLogger& logger, ZelLogLevel level, const char* file, int line, std::string_view function,
                            std::string_view text);
LUMORA_HOST_API void ZelLog(ZelLogger& logger, ZelLogLevel level, const char* file, int line, std::string_view function,
                            std::wstring_view text);

/// Masks personal data in UTF-8 text: the local part of mail addresses, the users of "sip:" and "tel:", "+" followed by
/// eight or more digits, user and password of a URL, the user's folder in home paths. Host names, IP addresses and
/// plain numbers stay. The markers do not reveal the length of the masked text. One pass; idempotent.
LUMORA_HOST_API std::string ZelLogger_replacePIIData(std::string_view text);
/// Returns false if ZelLogger_replacePIIData() would not change the text, so that the caller can avoid a conversion and
/// a copy; may return true for a text without personal data. Does not allocate.
LUMORA_HOST_API bool ZelLogger_mayHoldPIIData(std::wstring_view text) noexcept;

#if defined(_MSC_VER)
#define ZEL_FUNCTION_SIGNATURE __FUNCSIG__
#else
#define ZEL_FUNCTION_SIGNATURE __PRETTY_FUNCTION__
#endif

/// Expands to the source file, the line and the function name of the calling code.
#define ZEL_HERE __FILE__, __LINE__, ::zel::logging::functionName(ZEL_FUNCTION_SIGNATURE)
