#pragma once

#include <string>
#include <string_view>

namespace ZelUnified {

/// Leaves the file to its owner alone, to read and to write, whatever the umask said when it was made. `path` is UTF-8.
/// A failure is silent.
void restrictToOwner(const std::string& path);

/// Creates a file that only its owner can read and write, and writes `content` to it. Follows no link: if the name is
/// taken, even by a dangling link, writes nothing. `path` is UTF-8. A failure is silent.
void createForOwner(const std::string& path, std::string_view content);

} // namespace ZelUnified
