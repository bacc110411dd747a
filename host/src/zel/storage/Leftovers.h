#pragma once

#include <zel/FileLayer.h>

#include <string>
#include <string_view>

namespace zel::storage {

inline constexpr std::string_view temporarySuffix = ".tmp";

/// Removes the temporary files of writers of `path` that were killed before they could. They are told by their name
/// and by their age: a live writer is done within seconds.
void removeLeftovers(FileLayer& layer, const std::string& path);

} // namespace zel::storage
