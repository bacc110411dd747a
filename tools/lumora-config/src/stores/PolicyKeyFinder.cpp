#include "PolicyKeyFinder.h"

#include "ClientPolicy.h"
#include "XmlSettings.h"
#include "output/Failure.h"

namespace lumora_config {

using namespace zel::registry;

namespace {

/// Removes the first component from the path and returns it.
std::wstring_view removeFirstComponent(std::wstring_view& path) {
    const auto end = path.find(L'\\');
    const auto component = path.substr(0, end);
    path.remove_prefix(end == std::wstring_view::npos ? path.size() : end + 1);
    return component;
}

} // namespace

KeyPlaces PolicyKeyFinder::find(const std::vector<std::string>& files) {
    PolicyKeyFinder finder;
    for (const auto& file : files) {
        finder.apply(file);
    }
    KeyPlaces places;
    if (const auto* policy = finder.findNode(getPolicyKey())) {
        places = policy->values;
        walk(*policy, policy->children.size(), places);
    }
    return places;
}

const PolicyKeyFinder::Node* PolicyKeyFinder::findNode(std::wstring_view path) const {
    const Node* node = &root;
    while (!path.empty()) {
        const auto child = node->children.find(removeFirstComponent(path));
        if (child == node->children.end()) {
            return nullptr;
        }
        node = child->second.get();
    }
    return node;
}

void PolicyKeyFinder::apply(const std::string& file) {
    try {
        for (const auto& section : parseRegistryText(readWholeFile(file), HKEY_CURRENT_USER).sections) {
            apply(section, file);
        }
    } catch (const Failure&) {
        return; // the registry does not read it either
    }
}

void PolicyKeyFinder::apply(const RegistryTextSection& section, const std::string& file) {
    if (section.deletion) {
        remove(section.path);
        return;
    }
    Node* node = &root;
    for (std::wstring_view path = section.path; !path.empty();) {
        auto& child = node->children[std::wstring(removeFirstComponent(path))];
        if (!child) {
            child = std::make_unique<Node>();
        }
        node = child.get();
    }
    for (const auto& entry : section.entries) {
        if (!entry.deletion && isReadByClient(entry.value.type)) {
            node->values.insert_or_assign(entry.value.name, FilePlace{file, entry.line});
        } else {
            node->values.erase(entry.value.name); // deleted, or overwritten by a value that the client does not read
        }
    }
}

void PolicyKeyFinder::remove(std::wstring_view path) {
    Node* node = &root;
    while (true) {
        const auto child = node->children.find(removeFirstComponent(path));
        if (child == node->children.end()) {
            return;
        }
        if (path.empty()) {
            node->children.erase(child);
            return;
        }
        node = child->second.get();
    }
}

/// Like the service, visits at most `bound` subkeys, which below the first level is the number of siblings of the key.
void PolicyKeyFinder::walk(const Node& node, std::size_t bound, KeyPlaces& places) {
    std::size_t visited = 0;
    for (const auto& [name, child] : node.children) {
        if (visited++ == bound) {
            return;
        }
        places.insert(child->values.begin(), child->values.end());
        walk(*child, node.children.size(), places);
    }
}

} // namespace lumora_config
