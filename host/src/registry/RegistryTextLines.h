#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zel::registry {

/// The lines of a registry text, found in its bytes and decoded one at a time, so that a file can be cut without being
/// written anew. Holds a view: the bytes must outlive it.
class RegistryTextLines {
public:
    explicit RegistryTextLines(std::string_view fileBytes);

    std::size_t getCount() const { return starts.size(); }
    /// Without its LF; a CR before it stays.
    std::wstring getText(std::size_t index) const;
    /// With its end, as it stands in the file. The first line has the mark, if there is one.
    std::string_view getBytes(std::size_t index) const;

private:
    bool isUtf16() const { return unitSize == 2; }

    std::string_view bytes;
    std::size_t markSize = 0;
    std::size_t unitSize = 1;
    std::vector<std::size_t> starts;
};

} // namespace zel::registry
