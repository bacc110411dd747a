#include "ChainLink.h"

#include <kyr/StringUtils.h>

#include <utility>

namespace ZelUnified {

ChainLink::ChainLink(std::shared_ptr<ConfigStore> linkedStore)
    : store(std::move(linkedStore)), table(StoreTable::find(*store)) {
    if (table != nullptr) {
        nameOfLibraryStore = KyrCoreUtils::toWideString(store->getName());
    }
}

bool ChainLink::getValue(const FoldedKey& key, std::wstring& value) const {
    return table != nullptr ? table->getValue(key, value) : store->getValue(key.getText(), value);
}

std::wstring ChainLink::getWideName() const {
    return table != nullptr ? nameOfLibraryStore : KyrCoreUtils::toWideString(store->getName());
}

KeyList ChainLink::listKeys() const {
    return table != nullptr ? table->listKeys() : KeyList(store->getKeys());
}

} // namespace ZelUnified
