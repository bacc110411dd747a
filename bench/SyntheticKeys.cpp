#include "SyntheticKeys.h"

#include <kyr/StringUtils.h>

#include <array>
#include <string_view>

namespace bench {

namespace {

constexpr std::size_t shortestKey = 10;
constexpr std::size_t longestKey = 35;
constexpr std::size_t shortestValue = 5;
constexpr std::size_t longestValue = 60;

constexpr std::array<std::wstring_view, 8> beginnings{L"Telephony", L"Voicemail", L"Presence", L"Meetings",
                                                      L"Directory", L"Services",  L"Policy",   L"Desktop"};
constexpr std::array<std::wstring_view, 24> words{L"Server", L"Primary", L"Backup",  L"Enabled", L"Timeout", L"Address",
                                                  L"Port",   L"User",    L"Search",  L"Polling", L"Contact", L"Window",
                                                  L"Domain", L"Retry",   L"Secure",  L"Device",  L"Session", L"Picture",
                                                  L"Filter", L"Handler", L"Account", L"Cache",   L"Lookup",  L"Mode"};
constexpr std::wstring_view valueCharacters = L"abcdefghijklmnopqrstuvwxyz0123456789.-:/";

} // namespace

std::wstring SyntheticKeys::makeKey() {
    for (;;) {
        std::wstring key(beginnings[below(beginnings.size())]);
        const std::size_t length = shortestKey + below(longestKey - shortestKey + 1);
        while (key.size() < length) {
            key += words[below(words.size())];
        }
        key.resize(length);
        if (given.insert(KyrCoreUtils::toLowercase(key)).second) {
            return key;
        }
    }
}

std::vector<std::wstring> SyntheticKeys::makeKeys(std::size_t count) {
    std::vector<std::wstring> keys;
    keys.reserve(count);
    while (keys.size() < count) {
        keys.push_back(makeKey());
    }
    return keys;
}

std::wstring SyntheticKeys::makeValue() {
    std::wstring value(shortestValue + below(longestValue - shortestValue + 1), L' ');
    for (auto& character : value) {
        character = valueCharacters[below(valueCharacters.size())];
    }
    return value;
}

} // namespace bench
