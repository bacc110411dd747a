#include <kyr/StringUtils.h>
#include <registry/RegistryValue.h>

#include <utility>

namespace zel::registry {

namespace {

constexpr bool wideIsUtf16 = sizeof(wchar_t) == 2;
constexpr char32_t replacement = 0xFFFD;

bool isHighSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}

bool isLowSurrogate(char32_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

void appendUnit(std::vector<std::uint8_t>& data, char32_t unit) {
    data.push_back(static_cast<std::uint8_t>(unit & 0xFF));
    data.push_back(static_cast<std::uint8_t>(unit >> 8 & 0xFF));
}

char32_t unitAt(std::span<const std::uint8_t> data, std::size_t index) {
    return static_cast<char32_t>(data[2 * index] | data[2 * index + 1] << 8);
}

std::uint32_t numberOf(std::span<const std::uint8_t> data) {
    std::uint32_t number = 0;
    for (std::size_t index = 0; index < data.size() && index < sizeof(number); ++index) {
        number |= static_cast<std::uint32_t>(data[index]) << (8 * index);
    }
    return number;
}

} // namespace

std::vector<std::uint8_t> encodeRegistryText(std::wstring_view text) {
    std::vector<std::uint8_t> data;
    data.reserve(2 * text.size() + 2);
    for (const wchar_t c : text) {
        auto point = static_cast<char32_t>(c);
        if (wideIsUtf16) {
            appendUnit(data, point);
            continue;
        }
        if (point > 0x10FFFF || isHighSurrogate(point) || isLowSurrogate(point)) {
            point = replacement;
        }
        if (point < 0x10000) {
            appendUnit(data, point);
        } else {
            appendUnit(data, 0xD800 + ((point - 0x10000) >> 10));
            appendUnit(data, 0xDC00 + ((point - 0x10000) & 0x3FF));
        }
    }
    appendUnit(data, 0);
    return data;
}

std::wstring decodeAllRegistryText(std::span<const std::uint8_t> data) {
    std::wstring text;
    const auto units = data.size() / 2;
    text.reserve(units);
    for (std::size_t i = 0; i < units; ++i) {
        auto point = unitAt(data, i);
        if (!wideIsUtf16 && isHighSurrogate(point) && i + 1 < units && isLowSurrogate(unitAt(data, i + 1))) {
            point = 0x10000 + ((point - 0xD800) << 10) + (unitAt(data, ++i) - 0xDC00);
        } else if (!wideIsUtf16 && (isHighSurrogate(point) || isLowSurrogate(point))) {
            point = replacement;
        }
        text.push_back(static_cast<wchar_t>(point));
    }
    return text;
}

std::wstring decodeRegistryText(std::span<const std::uint8_t> data) {
    std::size_t end = 0;
    while (2 * end + 1 < data.size() && unitAt(data, end) != 0) {
        ++end;
    }
    return decodeAllRegistryText(data.first(2 * end));
}

std::optional<std::wstring> decodeRegistryValue(std::uint32_t type, std::span<const std::uint8_t> data) {
    switch (type) {
    case REG_SZ:
    case REG_EXPAND_SZ:
    case REG_MULTI_SZ:
        return decodeRegistryText(data);
    case REG_DWORD:
        return KyrCoreUtils::toWideString(numberOf(data));
    default:
        return std::nullopt;
    }
}

RegistryValue makeTextValue(std::wstring name, std::wstring_view text) {
    return {std::move(name), REG_SZ, encodeRegistryText(text)};
}

RegistryValue makeNumberValue(std::wstring name, std::uint32_t number) {
    RegistryValue value{std::move(name), REG_DWORD, {}};
    for (int shift = 0; shift < 32; shift += 8) {
        value.data.push_back(static_cast<std::uint8_t>(number >> shift & 0xFF));
    }
    return value;
}

} // namespace zel::registry
