#include "KeyPattern.h"

#include <kyr/StringUtils.h>

namespace inspection {

bool matchesPattern(std::wstring_view key, std::wstring_view pattern) {
    const auto text = KyrCoreUtils::toLowercase(key);
    const auto glob = KyrCoreUtils::toLowercase(pattern);
    std::size_t at = 0;
    std::size_t next = 0;
    std::size_t star = std::wstring::npos; // the last "*" of the pattern so far
    std::size_t starAt = 0;                // where the text behind that "*" begins
    while (at < text.size()) {
        if (next < glob.size() && glob[next] == L'*') {
            star = next++;
            starAt = at;
        } else if (next < glob.size() && (glob[next] == L'?' || glob[next] == text[at])) {
            ++next;
            ++at;
        } else if (star != std::wstring::npos) {
            next = star + 1;
            at = ++starAt;
        } else {
            return false;
        }
    }
    return glob.find_first_not_of(L'*', next) == std::wstring::npos;
}

} // namespace inspection
