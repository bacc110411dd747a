#pragma once

#include <kyr/StringUtils.h>

#include <map>
#include <set>
#include <string>
#include <string_view>

namespace ZelUnified {

/// Orders keys case-insensitively, so all spellings of a key are the same key. A container keeps the spelling of the
/// first insertion: a later write in a different case replaces the value only.
struct caseInsensitiveMapComparator {
    using is_transparent = void;
    bool operator()(std::wstring_view a, std::wstring_view b) const noexcept {
        return KyrCoreUtils::caseInsensitiveStringCompare(a, b) < 0;
    }
};

/// The same order for sets.
using caseInsensitiveStringComparator = caseInsensitiveMapComparator;

using ConfigMap = std::map<std::wstring, std::wstring, caseInsensitiveMapComparator>;
using ConfigKeySet = std::set<std::wstring, caseInsensitiveStringComparator>;

} // namespace ZelUnified
