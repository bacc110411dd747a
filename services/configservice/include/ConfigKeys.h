#pragma once

#include <string_view>

/// The names that the configuration system and its clients share, as constants: keys, old names of keys, store names,
/// file names and a few fixed texts. ConfigKeys.def lists them, ConfigCatalogue.h says what is known about each. Keys
/// are looked up case-insensitively.
namespace ZelUnified::ConfigKeys {

#define LUMORA_KEY(constant, name, ...) inline constexpr std::wstring_view constant = name;
#define LUMORA_OLD_NAME(constant, name) inline constexpr std::wstring_view constant = name;
#define LUMORA_NAME(constant, text, meaning, use) inline constexpr std::basic_string_view constant = text;
#include <ConfigKeys.def>

} // namespace ZelUnified::ConfigKeys
