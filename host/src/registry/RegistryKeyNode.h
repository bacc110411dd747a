#pragma once

#include <kyr/StringUtils.h>
#include <registry/RegistryValue.h>

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zel::registry {

/// Orders names, case-insensitive.
struct RegistryNameOrder {
    using is_transparent = void;
    bool operator()(std::wstring_view a, std::wstring_view b) const noexcept {
        return KyrCoreUtils::caseInsensitiveStringCompare(a, b) < 0;
    }
};

/// A key of an in-memory tree, with its values and subkeys. Has no lock.
class RegistryKeyNode {
public:
    explicit RegistryKeyNode(std::wstring keyName) : name(std::move(keyName)) {}

    const std::wstring& getName() const { return name; }
    /// Returns true if the key or one of its parents was deleted.
    bool isRemoved() const { return removed; }

    std::size_t getChildCount() const { return children.size(); }
    std::shared_ptr<RegistryKeyNode> findChild(std::wstring_view childName) const;
    /// Returns the child of that name; creates it if it does not exist.
    std::shared_ptr<RegistryKeyNode> makeChild(std::wstring_view childName);
    bool removeChild(std::wstring_view childName);
    /// Returns null if `index` is past the end.
    const RegistryKeyNode* getChild(std::size_t index);

    void setValue(RegistryValue value);
    void removeValue(std::wstring_view valueName);
    const RegistryValue* findValue(std::wstring_view valueName) const;
    /// Returns null if `index` is past the end.
    const RegistryValue* getValue(std::size_t index);

private:
    void markRemoved();
    void closeGaps();

    std::wstring name;
    bool removed = false;
    std::map<std::wstring, std::shared_ptr<RegistryKeyNode>, RegistryNameOrder> children;
    /// The children by index, filled on demand. Not used for index 0, because a recursive deletion requests only that
    /// one.
    std::vector<const RegistryKeyNode*> childrenByIndex;

    /// In the order in which they were first set. Removed values leave gaps until the next access by index.
    std::vector<std::unique_ptr<RegistryValue>> values;
    std::map<std::wstring, std::size_t, RegistryNameOrder> valuesByName;
};

} // namespace zel::registry
