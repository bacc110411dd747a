#pragma once

#include "SettingsDump.h"

#include <string>
#include <string_view>

/// The text format of dumps, in UTF-8: one line for each key, KEY = "VALUE"  # STORE. Quotes, backslashes and
/// characters that a reader cannot see are escaped: \" \\ \n \r \t \uXXXX. The word `secret` precedes the value of a
/// sensitive key, and the word `hidden` replaces it. Empty lines and lines that begin with # are comments.
namespace lumora_config {

std::string formatSettings(const SettingsDump& dump);
/// Returns the line of one key, without a line feed.
std::string formatSetting(const DumpedSetting& setting);

/// Parses a dump in either format, text or JSON. Messages use `name` as the file. Throws Failure (Environment) with the
/// line and the reason, which never quotes a value.
SettingsDump parseDump(std::string_view content, const std::string& name);

/// Parses a dump in JSON. Throws like parseDump().
SettingsDump parseJsonDump(std::string_view content, const std::string& name);

} // namespace lumora_config
