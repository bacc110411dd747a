#include "RegistryKeyNode.h"

#include <algorithm>
#include <utility>

namespace zel::registry {

std::shared_ptr<RegistryKeyNode> RegistryKeyNode::findChild(std::wstring_view childName) const {
    const auto found = children.find(childName);
    return found == children.end() ? nullptr : found->second;
}

std::shared_ptr<RegistryKeyNode> RegistryKeyNode::makeChild(std::wstring_view childName) {
    if (auto child = findChild(childName)) {
        return child;
    }
    auto child = std::make_shared<RegistryKeyNode>(std::wstring(childName));
    children.emplace(child->getName(), child);
    childrenByIndex.clear();
    return child;
}

bool RegistryKeyNode::removeChild(std::wstring_view childName) {
    const auto found = children.find(childName);
    if (found == children.end()) {
        return false;
    }
    found->second->markRemoved();
    children.erase(found);
    childrenByIndex.clear();
    return true;
}

const RegistryKeyNode* RegistryKeyNode::getChild(std::size_t index) {
    if (index >= children.size()) {
        return nullptr;
    }
    if (index == 0) {
        return children.begin()->second.get();
    }
    if (childrenByIndex.empty()) {
        for (const auto& [childName, child] : children) {
            childrenByIndex.push_back(child.get());
        }
    }
    return childrenByIndex[index];
}

void RegistryKeyNode::setValue(RegistryValue value) {
    if (const auto found = valuesByName.find(value.name); found != valuesByName.end()) {
        auto& older = *values[found->second];
        older.type = value.type;
        older.data = std::move(value.data);
        return;
    }
    valuesByName.emplace(value.name, values.size());
    values.push_back(std::make_unique<RegistryValue>(std::move(value)));
}

void RegistryKeyNode::removeValue(std::wstring_view valueName) {
    const auto found = valuesByName.find(valueName);
    if (found == valuesByName.end()) {
        return;
    }
    values[found->second].reset();
    valuesByName.erase(found);
}

const RegistryValue* RegistryKeyNode::findValue(std::wstring_view valueName) const {
    const auto found = valuesByName.find(valueName);
    return found == valuesByName.end() ? nullptr : values[found->second].get();
}

const RegistryValue* RegistryKeyNode::getValue(std::size_t index) {
    closeGaps();
    return index < values.size() ? values[index].get() : nullptr;
}

void RegistryKeyNode::markRemoved() {
    removed = true;
    for (const auto& [childName, child] : children) {
        child->markRemoved();
    }
}

void RegistryKeyNode::closeGaps() {
    if (values.size() == valuesByName.size()) {
        return;
    }
    std::erase(values, nullptr);
    for (std::size_t i = 0; i < values.size(); ++i) {
        valuesByName.find(values[i]->name)->second = i;
    }
}

} // namespace zel::registry
