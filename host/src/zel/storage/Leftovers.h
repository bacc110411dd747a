#pragma once

#include <zel/FileLayer.h>

#include <string>
#include <string_view>

namespace zel::storage {

inline constexpr std::string_view temporarySuffix = ".tmp";

/// Removes temporary files that killed writers of `path` left behind. It recognizes them by their name and age: a
/// living writer finishes within seconds.
void removeLeftovers(FileLayer& layer, const std::string& path);

} // namespace zel::storage
