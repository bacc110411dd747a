#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumora_config {

/// The names that one key may have in a store.
struct KeyNames {
    std::wstring current;                ///< The new name, or the requested key if it was never renamed.
    std::optional<std::wstring> earlier; ///< The old name.
    bool askedByEarlierName = false;

    /// Returns the names in lookup order.
    std::vector<std::wstring> getAll() const;
};

/// Returns the names of a key. Only for display; the service uses its own table.
KeyNames namesOf(std::wstring_view key);

} // namespace lumora_config
