#pragma once

#include <ConfigMap.h>

#include <cstddef>
#include <map>
#include <string>

namespace lumora_config {

/// A line of a file.
struct FilePlace {
    std::string file;
    std::size_t line = 0;
};

/// The place of each key of a store, case-insensitive.
using KeyPlaces = std::map<std::wstring, FilePlace, ZelUnified::caseInsensitiveMapComparator>;

} // namespace lumora_config
