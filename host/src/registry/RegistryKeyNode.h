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

/// Orders names ignoring case.
struct RegistryNameOrder {
    using is_transparent = void;
    bool operator()(std::wstring_view a, std::wstring_view b) const noexcept {
        return KyrCoreUtils::caseInsensitiveStringCompare(a, b) < 0;
    }
};

/// A key of a tree in memory: its values and the keys below it. No lock of its own.
class RegistryKeyNode {
public:
    explicit RegistryKeyNode(std::wstring keyName) : name(std::move(keyName)) {}

    const std::wstring& getName() const { return name; }
    /// True once the key, or one above it, was deleted.
    bool isRemoved() const { return removed; }

    std::size_t getChildCount() const { return children.size(); }
    std::shared_ptr<RegistryKeyNode> findChild(std::wstring_view childName) const;
    /// The child of that name, made if need be.
    std::shared_ptr<RegistryKeyNode> makeChild(std::wstring_view childName);
    bool removeChild(std::wstring_view childName);
    /// Null behind the last one.
    const RegistryKeyNode* getChild(std::size_t index);

    void setValue(RegistryValue value);
    void removeValue(std::wstring_view valueName);
    const RegistryValue* findValue(std::wstring_view valueName) const;
    /// Null behind the last one.
    const RegistryValue* getValue(std::size_t index);

private:
    void markRemoved();
    void closeGaps();

    std::wstring name;
    bool removed = false;
    std::map<std::wstring, std::shared_ptr<RegistryKeyNode>, RegistryNameOrder> children;
    /// The children by index, made when it is asked for. Not for index 0: whoever deletes keys asks for that one alone.
    std::vector<const RegistryKeyNode*> childrenByIndex;

    /// In the order of their first setting. Removed values leave gaps until someone asks by index.
    std::vector<std::unique_ptr<RegistryValue>> values;
    std::map<std::wstring, std::size_t, RegistryNameOrder> valuesByName;
};

} // namespace zel::registry
