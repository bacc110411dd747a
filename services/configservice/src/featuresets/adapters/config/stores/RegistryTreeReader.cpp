#include "RegistryTreeReader.h"

#include "RegistryKeyHandle.h"

#include <registry/RegistryValue.h>

#include <utility>

namespace ZelUnified {

using namespace zel::registry;

namespace {

/// The size of a path buffer in characters, including the terminator.
constexpr std::size_t pathBufferSize = 1024;

} // namespace

void RegistryTreeReader::read(const std::wstring& path) {
    const RegistryKeyHandle key(registry, HKEY_CURRENT_USER, path.c_str());
    if (!key) {
        return;
    }
    readValues(key.get());
    const auto count = countSubkeys(key.get());
    walkSubkeys(key.get(), path, count, count);
}

/// Reads the values of one key. Stops at the first value that does not fit the buffers; the following ones are not
/// read.
void RegistryTreeReader::readValues(HKEY key) {
    for (std::uint32_t index = 0;; ++index) {
        auto nameLength = static_cast<std::uint32_t>(valueName.size());
        auto dataLength = static_cast<std::uint32_t>(valueData.size());
        std::uint32_t type = REG_NONE;
        if (registry.RegEnumValueW(key, index, valueName, nameLength, type, valueData, dataLength) !=
            RegistryResult::Success) {
            return;
        }
        insert(std::wstring(valueName.data(), nameLength), type, std::span(valueData).first(dataLength));
    }
}

void RegistryTreeReader::insert(std::wstring key, std::uint32_t type, std::span<const std::uint8_t> data) {
    if (auto text = decodeRegistryValue(type, data)) {
        values.emplace(std::move(key), std::move(*text));
    }
}

/// Reads the subkeys with indices below `bound`. Below the first level `bound` is the number of siblings of `key`, not
/// of its subkeys, so a key with more subkeys than its parent is read only in part.
void RegistryTreeReader::walkSubkeys(HKEY key, const std::wstring& path, std::uint32_t bound, std::uint32_t count) {
    for (std::uint32_t index = 0; index < bound; ++index) {
        auto length = static_cast<std::uint32_t>(keyName.size());
        if (registry.RegEnumKeyExW(key, index, keyName, length) != RegistryResult::Success) {
            continue;
        }
        readSubkey(path + L'\\' + std::wstring(keyName.data(), length), count);
    }
}

void RegistryTreeReader::readSubkey(const std::wstring& path, std::uint32_t bound) {
    if (path.size() >= pathBufferSize) {
        return; // truncated, the path would name another key
    }
    const RegistryKeyHandle key(registry, HKEY_CURRENT_USER, path.c_str());
    if (!key) {
        return;
    }
    readValues(key.get());
    if (const auto count = countSubkeys(key.get()); count > 0) {
        walkSubkeys(key.get(), path, bound, count);
    }
}

std::uint32_t RegistryTreeReader::countSubkeys(HKEY key) {
    std::uint32_t count = 0;
    return registry.RegQueryInfoKeyW(key, count) == RegistryResult::Success ? count : 0;
}

} // namespace ZelUnified
