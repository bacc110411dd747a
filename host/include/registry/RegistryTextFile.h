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

/// One line of a section: a value that is set, or the name of one that is deleted.
struct RegistryTextEntry {
    std::size_t line = 0;
    bool deletion = false;
    RegistryValue value;
};

/// One key of the file: the values below its header, or its deletion with all that lies under it.
struct RegistryTextSection {
    std::size_t firstLine = 0; ///< The header's.
    std::size_t lastLine = 0;  ///< The last before the next header.
    bool deletion = false;
    HKEY root{};
    std::wstring path; ///< Below the root, without empty parts.
    std::vector<RegistryTextEntry> entries;
};

/// A line that was not taken. The reason never quotes the file, which may hold secrets.
struct RegistryTextRefusal {
    std::size_t line = 0;
    std::string reason;
    /// True: the file is broken here, and a reader of policy stops. False: the line is well written, but is not for us.
    bool fault = false;
};

struct RegistryText {
    std::vector<RegistryTextSection> sections;
    std::vector<RegistryTextRefusal> refusals; ///< By line.
};

/// What a reader does with the rest of a file behind a fault.
enum class AfterFault { Stop, GoOn };

/// Reads "Windows Registry Editor Version 5.00" or "REGEDIT4" text, in UTF-16LE with a mark or in UTF-8 with or without
/// one, lines ended by LF or CR LF. Sections below `root` are taken, those of other roots are refusals without fault.
/// Time and memory grow with the size of the text alone; nothing is too broken to read.
LUMORA_HOST_API RegistryText parseRegistryText(std::string_view bytes, HKEY root, AfterFault afterFault);

/// The sections as a file of version 5.00 in UTF-8 that parseRegistryText() takes whole.
LUMORA_HOST_API std::string formatRegistryText(std::span<const RegistryTextSection> sections);

/// The file's own bytes without the lines of these sections of it.
LUMORA_HOST_API std::string cutRegistryText(std::string_view bytes, std::span<const RegistryTextSection> sections);

/// Puts the sections into the current user's layer as the file `name`, ".reg" added where it is missing, over a file of
/// that name; if that is a link, over the file that it names. Where the registry is made of files, it counts from the
/// next time that a key is opened. 0, or an errno value: EINVAL for a name that is no bare file name or begins with a
/// point, EFBIG for a text of more than 64 MiB, which would not be read, EEXIST if something other than a regular file
/// has the name.
LUMORA_HOST_API int installRegistryText(const RegistryText& text, const std::string& name);

} // namespace zel::registry
