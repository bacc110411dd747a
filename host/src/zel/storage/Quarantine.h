#pragma once

#include <zel/FileLayer.h>

#include <string>

namespace zel::storage {

/// Keeps what stands at `path` as "NAME.unreadable" in the same directory, in the place of an older one. The file stays
/// where it is too, where the file system has links, so that its replacement is still a single step. 0 also when
/// nothing stands there.
int keepUnreadable(FileLayer& layer, const std::string& path);

} // namespace zel::storage
