#pragma once

#include <string>
#include <string_view>

namespace lumora_config {

/// Returns the text (UTF-8) for output on one line: control characters (C0, DEL and C1), line separators and each byte
/// that is not UTF-8 are escaped.
std::string toOneLine(std::string_view text);

/// Like toOneLine(), but keeps line feeds and tabs.
std::string toVisibleLines(std::string_view text);

/// Returns the text as the service writes it in XML files: `&`, `<`, `>` and `"` are escaped.
std::string escapeXml(std::string_view text);

/// Returns the text for an element or a quoted attribute of a page: like escapeXml(), and `'` is escaped too.
std::string escapeHtml(std::string_view text);

/// Returns the text with invisible characters replaced for a page: control characters become their symbols,
/// bidirectional marks their names. Keeps line breaks and tabs.
std::wstring makeVisible(std::wstring_view text);

} // namespace lumora_config
