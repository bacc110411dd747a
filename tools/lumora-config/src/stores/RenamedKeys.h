#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumora_config {

/// The names under which one key may stand in a store.
struct KeyNames {
    std::wstring current;                ///< The new name; the key as asked when it was never renamed.
    std::optional<std::wstring> earlier; ///< The old name.
    bool askedByEarlierName = false;

    /// In the order in which a lookup tries them.
    std::vector<std::wstring> getAll() const;
};

/// What the program knows of renamed keys. Used to show them; the service decides by a table of its own.
KeyNames namesOf(std::wstring_view key);

} // namespace lumora_config
