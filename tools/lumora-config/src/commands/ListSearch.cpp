#include "ListSearch.h"

#include "stores/SearchPattern.h"

#include <kyr/StringUtils.h>

namespace lumora_config {

void removeMismatches(std::vector<ListedValue>& values, const Command& command,
                      const std::function<bool(const std::wstring& key)>& isSensitive) {
    using Kind = SearchPattern::Kind;
    const auto kind = command.byExpression ? Kind::Expression : command.byValue ? Kind::Part : Kind::Prefix;
    const SearchPattern pattern(KyrCoreUtils::toWideString(command.prefix), kind);
    std::erase_if(values, [&](const ListedValue& listed) {
        return !pattern.matches(command.byValue ? listed.value : listed.key) ||
               (command.overridden && !listed.overridden) || (command.sensitive && !isSensitive(listed.key));
    });
}

std::string describeEmptyList(const Command& command) {
    const bool isPrefix = !command.byExpression && !command.byValue && command.store.empty() && !command.overridden &&
                          !command.sensitive && command.prefix.find_first_of("*?") == std::string::npos;
    return isPrefix ? "no key begins with '" + command.prefix + "'" : "the search finds no key";
}

} // namespace lumora_config
