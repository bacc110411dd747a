#pragma once

#include <kyr/StringUtils.h>

#include <map>
#include <set>
#include <string>
#include <string_view>

namespace ZelUnified {

/// Orders keys ignoring case, so that spellings of one key are one key. A container keeps the form of the first
/// insertion: a later write in another case replaces the value and leaves the key.
struct caseInsensitiveMapComparator {
    using is_transparent = void;
    bool operator()(std::wstring_view a, std::wstring_view b) const noexcept {
        return KyrCoreUtils::caseInsensitiveStringCompare(a, b) < 0;
    }
};

/// The same rule for sets.
using caseInsensitiveStringComparator = caseInsensitiveMapComparator;

using ConfigMap = std::map<std::wstring, std::wstring, caseInsensitiveMapComparator>;
using ConfigKeySet = std::set<std::wstring, caseInsensitiveStringComparator>;

} // namespace ZelUnified
