#include "TableCopy.h"

#include "ConfigTable.h"
#include "secure/SecureString.h"

#include <algorithm>

namespace ZelUnified {

TableCopy::~TableCopy() {
    zel::SecureString::wipe(characters);
}

std::size_t TableCopy::countCharacters(ConfigTable& table) {
    std::size_t count = 0;
    for (const auto& entry : table.list()) {
        count += entry->getKey().size() + entry->getValue().size();
    }
    return count;
}

void TableCopy::reserve(std::size_t count) {
    if (count <= characters.capacity()) {
        return;
    }
    std::wstring larger(count, L'\0'); // written, so that the system provides the memory now
    larger.assign(characters);
    zel::SecureString::wipe(characters);
    characters.swap(larger);
}

void TableCopy::assign(ConfigTable& table) {
    zel::SecureString::wipe(characters);
    characters.clear();
    ends.clear();
    const auto& entries = table.list();
    ends.reserve(2 * entries.size());
    for (const auto& entry : entries) {
        add(entry->getKey());
        add(entry->getValue());
    }
}

void TableCopy::add(std::wstring_view text) {
    const std::size_t needed = characters.size() + text.size();
    if (needed > characters.capacity()) {
        reserve(std::max(needed, 2 * characters.capacity()));
    }
    characters += text;
    ends.push_back(characters.size());
}

void TableCopy::swap(TableCopy& other) noexcept {
    characters.swap(other.characters);
    ends.swap(other.ends);
}

bool TableCopy::equals(ConfigTable& table) const {
    const auto& entries = table.list();
    if (entries.size() != size()) {
        return false;
    }
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (entries[i]->getKey() != getKey(i) || entries[i]->getValue() != getValue(i)) {
            return false;
        }
    }
    return true;
}

} // namespace ZelUnified
