#include "RegistryTree.h"

#include <kyr/AnnotatedMutex.h>
#include <kyr/LockGuard.h>
#include <kyr/StringUtils.h>
#include <registry/RegistryHive.h>

#include <algorithm>
#include <map>
#include <utility>

namespace zel::registry {

namespace {

std::wstring_view toView(const wchar_t* text) {
    return text == nullptr ? std::wstring_view() : text;
}

/// Copies the text with a terminator. Returns false if it does not fit.
bool copyName(std::wstring_view text, std::span<wchar_t> buffer, std::uint32_t& length) {
    if (text.size() >= buffer.size()) {
        return false;
    }
    std::ranges::copy(text, buffer.begin());
    buffer[text.size()] = L'\0';
    length = static_cast<std::uint32_t>(text.size());
    return true;
}

template <class Byte, class Source>
RegistryResult copyData(const Source& source, std::span<Byte> buffer, std::uint32_t& length) {
    length = static_cast<std::uint32_t>(source.size());
    if (source.size() > buffer.size()) {
        return RegistryResult::MoreData;
    }
    std::ranges::copy(source, buffer.begin());
    return RegistryResult::Success;
}

} // namespace

struct RegistryHive::State {
    struct OpenKey {
        std::shared_ptr<RegistryKeyNode> node;
        RegistryPlace place;
    };

    /// Returns the key of a handle; null if the handle is not open or its key was deleted. Sets `place` for every open
    /// handle.
    std::shared_ptr<RegistryKeyNode> find(HKEY key, RegistryPlace* place = nullptr) const LUMORA_REQUIRES(mutex) {
        if (auto root = tree->getRoot(key)) {
            if (place != nullptr) {
                place->root = key;
            }
            return root;
        }
        const auto found = openKeys.find(key);
        if (found == openKeys.end()) {
            return nullptr;
        }
        if (place != nullptr) {
            *place = found->second.place;
        }
        return found->second.node->isRemoved() ? nullptr : found->second.node;
    }

    mutable KyrCoreUtils::AnnotatedMutex<> mutex;
    std::unique_ptr<RegistryTree> tree LUMORA_GUARDED_BY(mutex)
        LUMORA_PT_GUARDED_BY(mutex) = std::make_unique<RegistryTree>();
    std::map<HKEY, OpenKey> openKeys LUMORA_GUARDED_BY(mutex);
    std::uintptr_t lastHandle LUMORA_GUARDED_BY(mutex) = 0;
};

RegistryHive::RegistryHive() : state(std::make_unique<State>()) {}

RegistryHive::~RegistryHive() = default;

void RegistryHive::makeKey(HKEY root, std::wstring_view path) {
    const KyrCoreUtils::LockGuard lock(state->mutex);
    state->tree->make(root, path);
}

void RegistryHive::setValue(HKEY root, std::wstring_view path, RegistryValue value) {
    const KyrCoreUtils::LockGuard lock(state->mutex);
    if (const auto key = state->tree->make(root, path)) {
        key->setValue(std::move(value));
    }
}

bool RegistryHive::removeTree(HKEY root, std::wstring_view path) {
    const KyrCoreUtils::LockGuard lock(state->mutex);
    return state->tree->remove(root, path);
}

bool RegistryHive::hasKey(HKEY root, std::wstring_view path) const {
    const KyrCoreUtils::LockGuard lock(state->mutex);
    return state->tree->find(root, path) != nullptr;
}

bool RegistryHive::hasSubkeys(HKEY root, std::wstring_view path) const {
    const KyrCoreUtils::LockGuard lock(state->mutex);
    const auto key = state->tree->find(root, path);
    return key && key->getChildCount() > 0;
}

std::size_t RegistryHive::getOpenKeyCount() const {
    const KyrCoreUtils::LockGuard lock(state->mutex);
    return state->openKeys.size();
}

std::optional<RegistryPlace> RegistryHive::getPlace(HKEY key, std::wstring_view subkey) const {
    const KyrCoreUtils::LockGuard lock(state->mutex);
    RegistryPlace place;
    if (!state->find(key, &place)) {
        return std::nullopt;
    }
    place.path = normalizeKeyPath(place.path.append(1, L'\\').append(subkey));
    return place;
}

void RegistryHive::replaceTree(std::unique_ptr<RegistryTree> tree) {
    // The old tree is destroyed after the unlock, because it may be large.
    const KyrCoreUtils::LockGuard lock(state->mutex);
    state->tree.swap(tree);
}

RegistryResult RegistryHive::RegOpenKeyExW(HKEY key, const wchar_t* subkey, std::uint32_t, std::uint32_t,
                                           HKEY& opened) {
    const KyrCoreUtils::LockGuard lock(state->mutex);
    State::OpenKey open;
    const auto above = state->find(key, &open.place);
    if (!above) {
        return RegistryResult::InvalidHandle;
    }
    open.node = findKey(above, toView(subkey));
    if (!open.node) {
        return RegistryResult::NotFound;
    }
    open.place.path = normalizeKeyPath(open.place.path.append(1, L'\\').append(toView(subkey)));
    // Skips the numbers of the roots if the counter ever reaches them.
    do {
        opened = HKEY{++state->lastHandle};
    } while (state->tree->getRoot(opened));
    state->openKeys.emplace(opened, std::move(open));
    return RegistryResult::Success;
}

RegistryResult RegistryHive::RegQueryInfoKeyW(HKEY key, std::uint32_t& subkeys) {
    const KyrCoreUtils::LockGuard lock(state->mutex);
    const auto node = state->find(key);
    if (!node) {
        return RegistryResult::InvalidHandle;
    }
    subkeys = static_cast<std::uint32_t>(node->getChildCount());
    return RegistryResult::Success;
}

RegistryResult RegistryHive::RegEnumKeyExW(HKEY key, std::uint32_t index, std::span<wchar_t> name,
                                           std::uint32_t& nameLength) {
    const KyrCoreUtils::LockGuard lock(state->mutex);
    const auto node = state->find(key);
    if (!node) {
        return RegistryResult::InvalidHandle;
    }
    const auto* child = node->getChild(index);
    if (child == nullptr) {
        return RegistryResult::NoMoreItems;
    }
    return copyName(child->getName(), name, nameLength) ? RegistryResult::Success : RegistryResult::MoreData;
}

RegistryResult RegistryHive::RegEnumValueW(HKEY key, std::uint32_t index, std::span<wchar_t> name,
                                           std::uint32_t& nameLength, std::uint32_t& type, std::span<std::uint8_t> data,
                                           std::uint32_t& dataLength) {
    const KyrCoreUtils::LockGuard lock(state->mutex);
    const auto node = state->find(key);
    if (!node) {
        return RegistryResult::InvalidHandle;
    }
    const auto* value = node->getValue(index);
    if (value == nullptr) {
        return RegistryResult::NoMoreItems;
    }
    if (!copyName(value->name, name, nameLength)) {
        return RegistryResult::MoreData;
    }
    type = value->type;
    return copyData(value->data, data, dataLength);
}

RegistryResult RegistryHive::RegDeleteKeyW(HKEY key, const wchar_t* subkey) {
    const KyrCoreUtils::LockGuard lock(state->mutex);
    RegistryPlace place;
    const auto above = state->find(key, &place);
    if (!above) {
        return RegistryResult::InvalidHandle;
    }
    const auto node = findKey(above, toView(subkey));
    if (!node) {
        return RegistryResult::NotFound;
    }
    const bool mayGo = node->getChildCount() == 0 &&
                       state->tree->remove(place.root, place.path.append(1, L'\\').append(toView(subkey)));
    return mayGo ? RegistryResult::Success : RegistryResult::AccessDenied;
}

RegistryResult RegistryHive::RegQueryValueExA(HKEY key, const char* name, std::uint32_t& type, std::span<char> data,
                                              std::uint32_t& dataLength) {
    const KyrCoreUtils::LockGuard lock(state->mutex);
    const auto node = state->find(key);
    if (!node) {
        return RegistryResult::InvalidHandle;
    }
    const auto* value = node->findValue(name == nullptr ? std::wstring() : KyrCoreUtils::toWideString(name));
    if (value == nullptr) {
        return RegistryResult::NotFound;
    }
    type = value->type;
    if (isRegistryText(type)) {
        return copyData(KyrCoreUtils::toString(decodeAllRegistryText(value->data)), data, dataLength);
    }
    return copyData(std::string(value->data.begin(), value->data.end()), data, dataLength);
}

RegistryResult RegistryHive::RegCloseKey(HKEY key) {
    const KyrCoreUtils::LockGuard lock(state->mutex);
    const bool known = state->tree->getRoot(key) != nullptr || state->openKeys.erase(key) > 0;
    return known ? RegistryResult::Success : RegistryResult::InvalidHandle;
}

} // namespace zel::registry
