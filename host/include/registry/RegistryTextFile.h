#pragma once

#include <registry/RegistryValue.h>
#include <zel/HostExport.h>

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// The text format in which administrators export and import parts of a registry.
namespace zel::registry {

/// One line of a section: a value to set, or the name of a value to delete.
struct RegistryTextEntry {
    std::size_t line = 0;
    bool deletion = false;
    RegistryValue value;
};

/// One key of the file: either the values below its header, or the deletion of the key with all its subkeys.
struct RegistryTextSection {
    std::size_t firstLine = 0; ///< The line of the header.
    std::size_t lastLine = 0;  ///< The last line before the next header.
    bool deletion = false;
    HKEY root{};
    std::wstring path; ///< Relative to the root, without empty components.
    std::vector<RegistryTextEntry> entries;
};

/// A rejected line. The reason never quotes the file, which may contain secrets.
struct RegistryTextRefusal {
    std::size_t line = 0;
    std::string reason;
};

struct RegistryText {
    std::vector<RegistryTextSection> sections;
    std::vector<RegistryTextRefusal> refusals; ///< Sorted by line.
};

/// The limits of a value, in characters and in bytes of data. The client reads values into buffers of this size and
/// ignores all values after one that does not fit, so the parser rejects such a value.
inline constexpr std::size_t longestRegistryValueName = 259;
inline constexpr std::size_t longestRegistryValueData = 4096;

/// Parses "Windows Registry Editor Version 5.00" or "REGEDIT4" text: UTF-16LE with a byte order mark, or UTF-8 with or
/// without one, lines terminated by LF or CR LF. Returns the sections below `root` and every rejected line. A rejected
/// line does not end the reading, but without the header in line 1 nothing else is read. If a line that names a key is
/// rejected, because it is malformed or names another root, so are the values up to the next valid key. Time and memory
/// grow linearly with the size of the text. No malformed input makes the call fail.
LUMORA_HOST_API RegistryText parseRegistryText(std::string_view bytes, HKEY root);

/// Returns the sections as a file of version 5.00 in UTF-8 that parseRegistryText() accepts completely.
LUMORA_HOST_API std::string formatRegistryText(std::span<const RegistryTextSection> sections);

/// Returns the bytes of the file without the lines of these sections, which must come from the same file.
LUMORA_HOST_API std::string cutRegistryText(std::string_view bytes, std::span<const RegistryTextSection> sections);

/// Writes the sections to the current user's layer as the file `name`, with ".reg" appended if it is missing. Replaces
/// an existing file of that name; if that is a link, replaces the target of the link. A registry that consists of files
/// reads the new file when a key is opened next. Returns 0 or an errno value: EINVAL if `name` is not a plain file name
/// or begins with a dot, EFBIG if the text exceeds 64 MiB (such a file would not be read), EEXIST if something other
/// than a regular file has the name.
LUMORA_HOST_API int installRegistryText(const RegistryText& text, const std::string& name);

} // namespace zel::registry
