#include "KeyList.h"

namespace ZelUnified {

KeyList::KeyList(const std::vector<std::wstring>& keys) {
    reserve(keys.size());
    for (const auto& key : keys) {
        add(key);
    }
}

void KeyList::add(std::wstring_view key) {
    characters += key;
    ends.push_back(characters.size());
}

} // namespace ZelUnified
