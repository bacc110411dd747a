#include "BundleMask.h"

#include "output/EscapedText.h"

#include <kyr/StringUtils.h>
#include <zel/ZelLog.h>

#include <ConfigCatalogue.h>

#include <algorithm>
#include <array>
#include <functional>
#include <optional>

namespace lumora_config {

namespace {

using KyrCoreUtils::toString;
using KyrCoreUtils::toWideString;

/// A shorter secret would also be found in other words.
constexpr std::size_t shortestSecret = 4;
constexpr std::size_t shortestName = 2;

constexpr char toLower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string toLower(std::string_view text) {
    std::string folded(text);
    std::ranges::transform(folded, folded.begin(), [](char c) { return toLower(c); });
    return folded;
}

constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

constexpr bool isWord(char c) {
    const char lower = toLower(c);
    return isDigit(c) || (lower >= 'a' && lower <= 'z') || c == '_' || static_cast<unsigned char>(c) >= 0x80;
}

std::string getHiddenText() {
    return toString(std::wstring(ZelUnified::ConfigKeys::valueHidden));
}

void replaceAll(std::string& text, std::string_view wanted, std::string_view replacement) {
    for (auto found = text.find(wanted); found != std::string::npos;
         found = text.find(wanted, found + replacement.size())) {
        text.replace(found, wanted.size(), replacement);
    }
}

/// Returns true if a word ends before `begin` and another one begins at `end`.
bool isWholeWord(std::string_view text, std::size_t begin, std::size_t end) {
    return (begin == 0 || !isWord(text[begin - 1])) && (end == text.size() || !isWord(text[end]));
}

/// Replaces a name, given in lower case, where it is a whole word.
std::string replaceName(const std::string& text, const std::string& name, const std::string& marker) {
    const auto folded = toLower(text);
    std::string result;
    std::size_t copied = 0;
    for (auto found = folded.find(name); found != std::string::npos; found = folded.find(name, found + 1)) {
        const auto end = found + name.size();
        if (found >= copied && isWholeWord(folded, found, end)) {
            result.append(text, copied, found - copied).append(marker);
            copied = end;
        }
    }
    return result.append(text, copied);
}

/// Returns true if a log record begins here: with a date and a time.
bool beginsRecord(std::string_view line) {
    constexpr std::string_view form = "0000-00-00 00:00:00";
    return line.size() > form.size() && std::ranges::equal(form, line.substr(0, form.size()), [](char want, char c) {
               return want == '0' ? isDigit(c) : want == c;
           });
}

/// Returns the end of the hidden value if the log has hidden what follows a name, such as `: "VALUE_HIDDEN`.
std::optional<std::size_t> findHiddenValue(std::string_view record, std::size_t nameEnd) {
    const auto hidden = getHiddenText();
    const auto line = record.substr(0, std::min(record.find('\n', nameEnd), record.size()));
    const auto found = line.find(hidden, nameEnd);
    if (found == std::string_view::npos) {
        return std::nullopt;
    }
    constexpr std::array<std::string_view, 5> connectives{"value", "is", "to", "in", "force"};
    std::size_t next = nameEnd;
    while (next < found) {
        const auto end =
            static_cast<std::size_t>(std::find_if_not(line.begin() + static_cast<std::ptrdiff_t>(next),
                                                      line.begin() + static_cast<std::ptrdiff_t>(found), isWord) -
                                     line.begin());
        if (end > next && std::ranges::find(connectives, toLower(line.substr(next, end - next))) == connectives.end()) {
            return std::nullopt;
        }
        next = std::max(end, next + 1);
    }
    return found + hidden.size();
}

/// Returns true if a value is assigned to the word that ends here.
bool isAssigned(std::string_view text, std::size_t wordEnd) {
    const auto next = text.find_first_not_of(" \t\"'", wordEnd);
    return next != std::string_view::npos && (text[next] == ':' || text[next] == '=');
}

/// Words after which a log may contain a secret, if a value is assigned to them.
constexpr std::array<std::string_view, 5> secretWords{"password", "passwd", "secret", "token", "credentials"};

/// After these words the service logs a whole settings file that is not well-formed. It may contain values of keys that
/// are sensitive only because the file says so.
constexpr std::string_view damagedFile = "contents of invalid xml";

} // namespace

BundleMask::BundleMask(const Hidden& hidden) {
    for (const auto& secret : hidden.secrets) {
        addSecret(secret);
        addSecret(KyrCoreUtils::trim(secret));
    }
    std::ranges::sort(secrets, std::ranges::greater(), &std::string::size);
    for (const auto& key : hidden.sensitiveKeys) {
        sensitiveKeys.push_back(toLower(key));
    }
    addName(hidden.user, "<user>");
    addName(hidden.host, "<host>");
    addName(hidden.host.substr(0, hidden.host.find('.')), "<host>");
}

void BundleMask::addSecret(const std::string& form) {
    for (const auto& secret : {form, escapeXml(form), toOneLine(form)}) {
        if (secret.size() >= shortestSecret && std::ranges::find(secrets, secret) == secrets.end()) {
            secrets.push_back(secret);
        }
    }
}

void BundleMask::addName(const std::string& name, const std::string& marker) {
    // Do not mask localhost.
    if (name.size() >= shortestName && toLower(name) != "localhost") {
        names.push_back({toLower(name), marker});
    }
}

std::string BundleMask::mask(std::string_view text) const {
    std::string masked(text);
    for (const auto& secret : secrets) {
        replaceAll(masked, secret, getHiddenText());
    }
    masked = ZelLogger_replacePIIData(masked);
    for (const auto& name : names) {
        masked = replaceName(masked, name.text, name.marker);
    }
    return masked;
}

std::wstring BundleMask::mask(const std::wstring& text) const {
    return toWideString(mask(toString(text)));
}

std::string BundleMask::maskLog(std::string_view log) const {
    std::string result;
    while (!log.empty()) {
        std::size_t end = 0;
        do {
            end = std::min(log.find('\n', end), log.size() - 1) + 1;
        } while (end < log.size() && !beginsRecord(log.substr(end)));
        result += cutSecrets(log.substr(0, end));
        log.remove_prefix(end);
    }
    return mask(result);
}

std::string BundleMask::cutSecrets(std::string_view record) const {
    const auto folded = toLower(record);
    std::size_t from = 0;
    for (;;) {
        auto end = std::string::npos;
        const auto findEnd = [&](std::string_view word, const std::function<bool(std::size_t)>& accepts) {
            auto found = folded.find(word, from);
            while (found != std::string::npos && !accepts(found + word.size())) {
                found = folded.find(word, found + 1);
            }
            end = found == std::string::npos ? end : std::min(end, found + word.size());
        };
        findEnd(damagedFile, [](std::size_t) { return true; });
        for (const auto& key : sensitiveKeys) {
            findEnd(key, [](std::size_t) { return true; });
        }
        for (const auto word : secretWords) {
            findEnd(word, [&](std::size_t wordEnd) { return isAssigned(folded, wordEnd); });
        }
        if (end == std::string::npos) {
            return std::string(record);
        }
        const auto hiddenEnd = findHiddenValue(record, end);
        if (!hiddenEnd) {
            return std::string(record.substr(0, end)) + ' ' + getHiddenText() + '\n';
        }
        from = *hiddenEnd;
    }
}

} // namespace lumora_config
