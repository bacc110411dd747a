#include "RegistryTree.h"

#include <utility>

namespace zel::registry {

namespace {

/// Removes the first component from the path and returns it; empty if there is none left.
std::wstring_view removeFirstPart(std::wstring_view& path) {
    while (!path.empty()) {
        const auto end = path.find(L'\\');
        const auto part = path.substr(0, end);
        path.remove_prefix(end == std::wstring_view::npos ? path.size() : end + 1);
        if (!part.empty()) {
            return part;
        }
    }
    return {};
}

} // namespace

RegistryTree::RegistryTree()
    : currentUser(std::make_shared<RegistryKeyNode>(L"HKEY_CURRENT_USER")),
      localMachine(std::make_shared<RegistryKeyNode>(L"HKEY_LOCAL_MACHINE")) {}

std::shared_ptr<RegistryKeyNode> RegistryTree::getRoot(HKEY root) const {
    if (root == HKEY_CURRENT_USER) {
        return currentUser;
    }
    return root == HKEY_LOCAL_MACHINE ? localMachine : nullptr;
}

std::shared_ptr<RegistryKeyNode> RegistryTree::find(HKEY root, std::wstring_view path) const {
    return findKey(getRoot(root), path);
}

std::shared_ptr<RegistryKeyNode> RegistryTree::make(HKEY root, std::wstring_view path) {
    auto node = getRoot(root);
    for (auto part = removeFirstPart(path); node && !part.empty(); part = removeFirstPart(path)) {
        node = node->makeChild(part);
    }
    return node;
}

bool RegistryTree::remove(HKEY root, std::wstring_view path) {
    const auto normal = normalizeKeyPath(path);
    const auto separator = normal.rfind(L'\\');
    const bool direct = separator == std::wstring::npos;
    const auto parent = find(root, direct ? std::wstring_view() : std::wstring_view(normal).substr(0, separator));
    return parent && parent->removeChild(direct ? normal : normal.substr(separator + 1));
}

void RegistryTree::apply(std::span<const RegistryTextSection> sections) {
    for (const auto& section : sections) {
        if (section.deletion) {
            remove(section.root, section.path);
            continue;
        }
        const auto key = make(section.root, section.path);
        for (const auto& entry : section.entries) {
            if (entry.deletion) {
                key->removeValue(entry.value.name);
            } else {
                key->setValue(entry.value);
            }
        }
    }
}

std::shared_ptr<RegistryKeyNode> findKey(std::shared_ptr<RegistryKeyNode> node, std::wstring_view path) {
    for (auto part = removeFirstPart(path); node && !part.empty(); part = removeFirstPart(path)) {
        node = node->findChild(part);
    }
    return node;
}

std::wstring normalizeKeyPath(std::wstring_view path) {
    std::wstring normal;
    for (auto part = removeFirstPart(path); !part.empty(); part = removeFirstPart(path)) {
        normal.append(normal.empty() ? 0 : 1, L'\\').append(part);
    }
    return normal;
}

bool isSameKey(std::wstring_view path, std::wstring_view other) {
    return KyrCoreUtils::caseInsensitiveStringEquals(path, other);
}

bool isKeyAtOrBelow(std::wstring_view path, std::wstring_view above) {
    if (path.size() <= above.size()) {
        return isSameKey(path, above);
    }
    return path[above.size()] == L'\\' && isSameKey(path.substr(0, above.size()), above);
}

} // namespace zel::registry
