#pragma once

#include "RegistryKeyNode.h"

#include <registry/RegistryTextFile.h>

#include <memory>
#include <span>
#include <string_view>

namespace zel::registry {

/// Both roots with all that lies below them. No lock of its own.
class RegistryTree {
public:
    RegistryTree();

    /// Null for what is no root.
    std::shared_ptr<RegistryKeyNode> getRoot(HKEY root) const;
    /// Null when there is no such key.
    std::shared_ptr<RegistryKeyNode> find(HKEY root, std::wstring_view path) const;
    /// Makes the key and those above it. Null for what is no root.
    std::shared_ptr<RegistryKeyNode> make(HKEY root, std::wstring_view path);
    /// Removes the key with all that lies below it. False when there was none; a root never goes.
    bool remove(HKEY root, std::wstring_view path);
    /// Does what the sections say, in their order.
    void apply(std::span<const RegistryTextSection> sections);

private:
    std::shared_ptr<RegistryKeyNode> currentUser;
    std::shared_ptr<RegistryKeyNode> localMachine;
};

/// Below `node`; empty parts of the path count for nothing.
std::shared_ptr<RegistryKeyNode> findKey(std::shared_ptr<RegistryKeyNode> node, std::wstring_view path);

/// The path without empty parts.
std::wstring normalizeKeyPath(std::wstring_view path);

/// Whether both paths, which are normalized, name the same key, or `path` one below `above`.
bool isSameKey(std::wstring_view path, std::wstring_view other);
bool isKeyAtOrBelow(std::wstring_view path, std::wstring_view above);

} // namespace zel::registry
