#pragma once

#include <string>
#include <string_view>

namespace ZelUnified {

/// Restricts the file to reading and writing by its owner, whatever the umask was when it was created. `path` is UTF-8.
/// Failures are ignored.
void restrictToOwner(const std::string& path);

/// Creates a file that only its owner can read and write, and writes `content` to it. Follows no link: if the name is
/// taken, even by a dangling link, writes nothing. `path` is UTF-8. A failure is silent.
void createForOwner(const std::string& path, std::string_view content);

} // namespace ZelUnified
