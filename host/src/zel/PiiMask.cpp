#include "PiiMask.h"

#include "kyr/CodePoints.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace zel::logging {

namespace {

constexpr std::string_view userMarker = "<user>";
constexpr std::string_view passwordMarker = "<password>";
constexpr std::string_view numberMarker = "<number>";

constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
constexpr char toLower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
constexpr bool isLetter(char c) {
    return toLower(c) >= 'a' && toLower(c) <= 'z';
}
constexpr bool isWord(char c) {
    return isLetter(c) || isDigit(c) || static_cast<unsigned char>(c) >= 0x80;
}
constexpr bool isControl(char c) {
    return static_cast<unsigned char>(c) <= ' ' || c == '\x7F';
}
constexpr bool isOneOf(char c, std::string_view set) {
    return set.find(c) != set.npos;
}
constexpr bool isSlash(char c) {
    return c == '/' || c == '\\';
}

constexpr bool beginsName(char c) {
    return isWord(c) || isOneOf(c, "_+%");
}
constexpr bool isInName(char c) {
    return isWord(c) || isOneOf(c, "!#$%&'*+-.^_`{|}~");
}
constexpr bool isHost(char c) {
    return isWord(c) || isOneOf(c, "-._");
}
constexpr bool beginsHost(char c) {
    return isWord(c) || isOneOf(c, "[_");
}
constexpr bool isInAuthority(char c) {
    return !isControl(c) && !isOneOf(c, "/?#\\\"<>");
}
constexpr bool isInSipUser(char c) {
    return !isControl(c) && !isOneOf(c, "\"<>,");
}
constexpr bool isInTelephone(char c) {
    return isWord(c) || isOneOf(c, "+-.()*#_%");
}
constexpr bool isInFolderName(char c) {
    return !isControl(c) && !isOneOf(c, "/\\\"'<>:;,|*?");
}
constexpr bool endsUrlPath(char c) {
    return isControl(c) || isOneOf(c, "\"<>\\?#=;,|");
}

constexpr bool isDottedQuad(std::string_view text) {
    int groups = 0;
    for (std::size_t begin = 0; begin <= text.size(); ++groups) {
        const std::size_t end = std::min(text.find('.', begin), text.size());
        if (end == begin || end - begin > 3 ||
            !std::all_of(text.begin() + static_cast<std::ptrdiff_t>(begin),
                         text.begin() + static_cast<std::ptrdiff_t>(end), isDigit)) {
            return false;
        }
        begin = end + 1;
    }
    return groups == 4;
}

bool equalsIgnoringCase(std::string_view text, std::string_view lower) {
    return std::ranges::equal(text, lower, {}, toLower);
}

/// Scans the text once. A rule examines only text that it then masks or skips, or stores the position it has reached,
/// so the time is linear. No rule matches across a marker, so a second run changes nothing.
class Scanner {
public:
    explicit Scanner(std::string_view line) : text(line) {}

    std::string run() {
        while (at < text.size()) {
            step();
        }
        output.append(text.substr(copied));
        return std::move(output);
    }

private:
    void step() {
        const char c = text[at];
        if (skipMarker()) {
            return;
        }
        if (beginsName(c) && at >= nameEnd && maskMailName()) {
            return;
        }
        if (c == '+' && maskNumber()) {
            return;
        }
        if (isSlash(c) && maskHomeFolder()) {
            return;
        }
        if (c == ':' && maskAfterColon()) {
            return;
        }
        inUrlPath = inUrlPath && !endsUrlPath(c);
        ++at;
    }

    template <class Predicate>
    std::size_t endOfRun(std::size_t from, Predicate predicate) const {
        while (from < text.size() && predicate(text[from])) {
            ++from;
        }
        return from;
    }

    char charAt(std::size_t place) const { return place < text.size() ? text[place] : '\0'; }

    /// Replaces the text from the current position to `end` with `marker`.
    void mask(std::size_t end, std::string_view marker) {
        output.append(text.substr(copied, at - copied)).append(marker);
        at = copied = end;
    }

    void maskUserAndPassword(std::size_t end) {
        const bool hasPassword = text.substr(at, end - at).find(':') != text.npos;
        mask(end, userMarker);
        if (hasPassword) {
            output.append(":").append(passwordMarker);
        }
    }

    bool skipMarker() {
        if (text[at] != '<') {
            return false;
        }
        for (const std::string_view marker : {userMarker, passwordMarker, numberMarker}) {
            if (text.substr(at, marker.size()) == marker) {
                at += marker.size();
                return true;
            }
        }
        return false;
    }

    /// Masks the local part before an "@" if a host follows.
    bool maskMailName() {
        nameEnd = endOfRun(at, isInName);
        if (charAt(nameEnd) != '@' || !beginsHost(charAt(nameEnd + 1))) {
            return false;
        }
        mask(nameEnd, userMarker);
        return true;
    }

    /// Masks "+" and at least eight digits, including the usual separators between them.
    bool maskNumber() {
        std::size_t digits = 0;
        std::size_t end = at;
        for (std::size_t next = at + 1; next < text.size() && next - end <= 3; ++next) {
            if (isDigit(text[next])) {
                ++digits;
                end = next;
            } else if (!isOneOf(text[next], " -./()")) {
                break;
            }
        }
        if (digits < 8 || isDottedQuad(text.substr(at + 1, end - at))) {
            return false;
        }
        mask(end + 1, numberMarker);
        return true;
    }

    /// Masks the folder after "/home/", "\Users\" and similar. Does not apply to the path of a web address.
    bool maskHomeFolder() {
        if (inUrlPath) {
            return false;
        }
        for (const std::string_view parent : {"home", "users", "documents and settings"}) {
            const std::size_t parentEnd = at + 1 + parent.size();
            if (!isSlash(charAt(parentEnd)) || !equalsIgnoringCase(text.substr(at + 1, parent.size()), parent)) {
                continue;
            }
            const std::size_t begin = endOfRun(parentEnd, isSlash);
            const std::size_t end = endOfFolderName(begin, text[parentEnd] == '\\');
            if (end == begin) {
                return false;
            }
            at = begin;
            mask(end, userMarker);
            return true;
        }
        return false;
    }

    /// Returns the end of the name. Windows allows blanks in the name of a user's folder; they are included only if a
    /// separator marks the end of the name.
    std::size_t endOfFolderName(std::size_t begin, bool mayHoldBlanks) const {
        const std::size_t end = endOfRun(begin, isInFolderName);
        if (!mayHoldBlanks || end == begin || charAt(end) != ' ') {
            return end;
        }
        const std::size_t longEnd = endOfRun(end, [](char c) { return c == ' ' || isInFolderName(c); });
        return isSlash(charAt(longEnd)) ? longEnd : end;
    }

    bool maskAfterColon() {
        if (endsScheme(at, "tel")) {
            at = endOfRun(at + 1, isSlash);
            maskTelephone();
            return true;
        }
        if (text.substr(at, 3) == "://") {
            enterAuthority();
            return true;
        }
        if (endsSipScheme(at)) {
            ++at;
            maskSipUser();
            return true;
        }
        return false;
    }

    /// Returns true if the name of that scheme ends at `place`.
    bool endsScheme(std::size_t place, std::string_view scheme) const {
        const std::size_t known = place - std::min(place, copied);
        if (known < scheme.size() || !equalsIgnoringCase(text.substr(place - scheme.size(), scheme.size()), scheme)) {
            return false;
        }
        return known == scheme.size() || !isLetter(text[place - scheme.size() - 1]);
    }

    bool endsSipScheme(std::size_t place) const { return endsScheme(place, "sip") || endsScheme(place, "sips"); }

    void enterAuthority() {
        inUrlPath = !endsScheme(at, "file");
        at += 3;
        const std::size_t end = endOfRun(at, isInAuthority);
        const std::size_t userEnd = text.substr(at, end - at).rfind('@');
        if (userEnd != text.npos && userEnd > 0) {
            maskUserAndPassword(at + userEnd);
        }
    }

    void maskSipUser() {
        if (const std::size_t userEnd = nextSipAt(); userEnd != text.npos) {
            if (userEnd > at) {
                maskUserAndPassword(userEnd);
            }
            return;
        }
        if (!beginsName(charAt(at))) {
            return;
        }
        // Without an "@" the text is either a host or a user: a host contains dots or has a port.
        const std::size_t end = endOfRun(at, isInName);
        const std::string_view name = text.substr(at, end - at);
        const bool hasPort =
            charAt(end) == ':' && isDigit(charAt(end + 1)) && !endsScheme(end, "tel") && !endsSipScheme(end);
        const bool marksHost = name.find('.') != name.npos || equalsIgnoringCase(name, "localhost") || hasPort;
        if (!marksHost || !std::ranges::all_of(name, isHost)) {
            mask(end, userMarker);
        }
    }

    /// Returns the position of the first "@" of the run that begins here. Stores it, because each "sip:" in a long run
    /// searches again.
    std::size_t nextSipAt() {
        if (sipSearchEnd <= at) {
            sipSearchEnd = endOfRun(at, [](char c) { return c != '@' && isInSipUser(c); });
        }
        return charAt(sipSearchEnd) == '@' ? sipSearchEnd : text.npos;
    }

    void maskTelephone() {
        const std::size_t end = endOfRun(at, isInTelephone);
        const std::string_view number = text.substr(at, end - at);
        if (std::ranges::any_of(number, isWord)) {
            mask(end, numberMarker);
        }
    }

    const std::string_view text;
    std::string output;
    std::size_t at = 0;
    std::size_t copied = 0;       ///< The text before this position was copied to the output.
    std::size_t nameEnd = 0;      ///< No further name begins before this position.
    std::size_t sipSearchEnd = 0; ///< The end of the last search for an "@".
    bool inUrlPath = false;
};

template <class Unit>
constexpr bool equalsIgnoringAsciiCase(std::basic_string_view<Unit> text, std::string_view lower) noexcept {
    return std::equal(text.begin(), text.end(), lower.begin(), lower.end(), [](Unit unit, char letter) {
        return unit == static_cast<Unit>(letter) || unit == static_cast<Unit>(letter - 'a' + 'A');
    });
}

template <class Unit>
constexpr bool endsIn(std::basic_string_view<Unit> text, std::string_view lower) noexcept {
    return text.size() >= lower.size() && equalsIgnoringAsciiCase(text.substr(text.size() - lower.size()), lower);
}

/// Returns true if a rule of the scanner may begin with the trigger at `place`. The user of a web address needs no case
/// because it contains an "@".
template <class Unit>
bool mayBeginAt(std::basic_string_view<Unit> text, std::size_t place) noexcept {
    const auto before = text.substr(0, place);
    const auto after = text.substr(place + 1);
    switch (static_cast<char>(text[place])) {
    case ':':
        return endsIn(before, "tel") || endsIn(before, "sip") || endsIn(before, "sips");
    case '/':
    case '\\':
        return equalsIgnoringAsciiCase(after.substr(0, 4), "home") ||
               equalsIgnoringAsciiCase(after.substr(0, 5), "users") ||
               equalsIgnoringAsciiCase(after.substr(0, 9), "documents");
    default:
        return true;
    }
}

/// 1 for each ASCII character with which a rule of the scanner begins, otherwise 0; a number, so that it can be added.
constexpr auto triggers = [] {
    std::array<std::uint8_t, 128> table{};
    for (const char trigger : std::string_view("@+:/\\")) {
        table[static_cast<unsigned char>(trigger)] = 1;
    }
    return table;
}();

/// Collects the positions of triggers before it checks any: a branch for each character would often be mispredicted.
template <class Unit>
bool mayBegin(std::basic_string_view<Unit> text) noexcept {
    constexpr std::size_t partLength = 64;
    std::array<std::uint8_t, partLength> places;
    for (std::size_t begin = 0; begin < text.size(); begin += partLength) {
        const auto part = text.substr(begin, partLength);
        std::size_t count = 0;
        for (std::size_t i = 0; i < part.size(); ++i) {
            const char32_t unit = KyrCoreUtils::codepoints::unitValue(part[i]);
            places[count] = static_cast<std::uint8_t>(i);
            count += triggers[unit < triggers.size() ? unit : 0];
        }
        for (std::size_t i = 0; i < count; ++i) {
            if (mayBeginAt(text, begin + places[i])) {
                return true;
            }
        }
    }
    return false;
}

} // namespace

std::string maskPersonalData(std::string_view text) {
    if (!mayHoldPersonalData(text)) {
        return std::string(text);
    }
    return Scanner(text).run();
}

bool mayHoldPersonalData(std::string_view text) noexcept {
    return mayBegin(text);
}

bool mayHoldPersonalData(std::wstring_view text) noexcept {
    return mayBegin(text);
}

} // namespace zel::logging
