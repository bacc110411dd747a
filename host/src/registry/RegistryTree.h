#pragma once

#include "RegistryKeyNode.h"

#include <registry/RegistryTextFile.h>

#include <memory>
#include <span>
#include <string_view>

namespace zel::registry {

/// Both roots with all their subkeys. Has no lock.
class RegistryTree {
public:
    RegistryTree();

    /// Returns null if `root` is not a root.
    std::shared_ptr<RegistryKeyNode> getRoot(HKEY root) const;
    /// Returns null if the key does not exist.
    std::shared_ptr<RegistryKeyNode> find(HKEY root, std::wstring_view path) const;
    /// Returns the key; creates it and its missing parents. Returns null if `root` is not a root.
    std::shared_ptr<RegistryKeyNode> make(HKEY root, std::wstring_view path);
    /// Removes the key with all its subkeys. Returns false if it does not exist; a root cannot be removed.
    bool remove(HKEY root, std::wstring_view path);
    /// Applies the sections in their order.
    void apply(std::span<const RegistryTextSection> sections);

private:
    std::shared_ptr<RegistryKeyNode> currentUser;
    std::shared_ptr<RegistryKeyNode> localMachine;
};

/// Returns the key below `node`; null if it does not exist. Ignores empty components of the path.
std::shared_ptr<RegistryKeyNode> findKey(std::shared_ptr<RegistryKeyNode> node, std::wstring_view path);

/// Returns the path without empty components.
std::wstring normalizeKeyPath(std::wstring_view path);

/// Both paths must be normalized. isSameKey() returns true if they name the same key, isKeyAtOrBelow() also if `path`
/// names a key below `above`.
bool isSameKey(std::wstring_view path, std::wstring_view other);
bool isKeyAtOrBelow(std::wstring_view path, std::wstring_view above);

} // namespace zel::registry
