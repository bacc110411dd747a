#include "ChainLink.h"

#include <kyr/StringUtils.h>

#include <IndexedStore.h>

#include <typeinfo>
#include <utility>

namespace ZelUnified {

namespace {

IndexedStore* toIndexed(ConfigStore& store) {
    auto* const indexed = dynamic_cast<IndexedStore*>(&store);
    return indexed != nullptr && indexed->getIndexedType() == typeid(store) ? indexed : nullptr;
}

} // namespace

ChainLink::ChainLink(std::shared_ptr<ConfigStore> linkedStore)
    : store(std::move(linkedStore)), indexed(toIndexed(*store)) {
    if (indexed != nullptr) {
        indexedName = KyrCoreUtils::toWideString(store->getName());
    }
}

bool ChainLink::getValue(const FoldedKey& key, std::wstring& value) const {
    return indexed != nullptr ? indexed->lookUp(key, value) : store->getValue(key.getText(), value);
}

std::wstring ChainLink::getWideName() const {
    return indexed != nullptr ? indexedName : KyrCoreUtils::toWideString(store->getName());
}

KeyList ChainLink::listKeys() const {
    return indexed != nullptr ? indexed->listKeys() : KeyList(store->getKeys());
}

} // namespace ZelUnified
