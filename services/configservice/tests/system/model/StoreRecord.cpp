#include "StoreRecord.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <vector>

namespace config_model {

namespace {

constexpr int priorityOfUnreadableEntry = 240;

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> pieces(1);
    for (const auto character : text) {
        if (character == separator) {
            pieces.emplace_back();
        } else {
            pieces.back() += character;
        }
    }
    return pieces;
}

} // namespace

Pairs readRecord(const std::wstring& text) {
    Pairs entries;
    for (const auto& piece : split(narrow(text), ';')) {
        const auto parts = split(piece, ':');
        if (parts.size() == 2) {
            entries.emplace_back(widen(parts[0]), widen(parts[1]));
        }
    }
    return ModelStore({.name = "record", .pairs = entries}).shape.pairs;
}

int readPriority(const std::wstring& text) {
    const auto digits = narrow(text);
    int priority = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), priority);
    return error == std::errc() && end == digits.data() + digits.size() ? priority : priorityOfUnreadableEntry;
}

std::wstring recordWith(const std::wstring& text, const std::string& name, int priority) {
    auto entries = readRecord(text);
    entries.emplace_back(widen(name), std::to_wstring(priority));
    std::wstring record;
    for (const auto& [entry, itsPriority] : ModelStore({.name = "record", .pairs = entries}).shape.pairs) {
        record += entry + L":" + itsPriority + L";";
    }
    return record;
}

std::wstring recordWithout(std::wstring text, const std::string& name) {
    for (std::size_t i = 0; i + name.size() <= text.size(); ++i) {
        if (isSame(std::wstring_view(text).substr(i, name.size()), widen(name))) {
            const auto end = text.find(L';', i);
            text.erase(i, end == std::wstring::npos ? end : end - i + 1);
            break;
        }
    }
    return text;
}

bool mayHaveCopy(std::string storeName) {
    std::replace(storeName.begin(), storeName.end(), '\\', '/');
    return ("/" + storeName + "/").find("/../") == std::string::npos;
}

} // namespace config_model
