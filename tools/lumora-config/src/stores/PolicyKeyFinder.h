#pragma once

#include "KeyPlaces.h"

#include <registry/RegistryTextFile.h>

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace lumora_config {

/// Finds the line of each key in the administrator's policy files. Applies the files like the registry and reads the
/// result like the service's store of policies: of several keys of the registry that contain a value of the same name,
/// the first one counts.
class PolicyKeyFinder {
public:
    /// Returns the place of each key. Ignores a file that cannot be read. `files` is in the order of application.
    static KeyPlaces find(const std::vector<std::string>& files);

private:
    struct Node {
        std::map<std::wstring, std::unique_ptr<Node>, ZelUnified::caseInsensitiveMapComparator> children;
        KeyPlaces values;
    };

    void apply(const std::string& file);
    void apply(const zel::registry::RegistryTextSection& section, const std::string& file);
    void remove(std::wstring_view path);
    /// Returns the key, or null if it does not exist.
    const Node* findNode(std::wstring_view path) const;
    static void walk(const Node& node, std::size_t bound, KeyPlaces& places);

    Node root;
};

} // namespace lumora_config
