#pragma once

#include <string>
#include <vector>

namespace fleet {

/// The keys of a cluster that apply to everybody, to one group or to one user: those that begin with `prefix`.
struct FleetScope {
    std::string prefix;

    static constexpr const char* root = "/lumora/fleet/";

    static FleetScope ofAll() { return {std::string(root) + "all/"}; }
    static FleetScope ofGroup(const std::string& group) { return {root + ("groups/" + group) + '/'}; }
    static FleetScope ofUser(const std::string& user) { return {root + ("users/" + user) + '/'}; }

    /// Returns true if a group or a user can have this name.
    static bool isName(const std::string& name) { return !name.empty() && name.find('/') == std::string::npos; }

    /// Returns the first key behind the scope's: the prefix with the last character, '/', replaced by the next one.
    std::string getEnd() const { return prefix.substr(0, prefix.size() - 1) + '0'; }

    bool operator==(const FleetScope&) const = default;
};

} // namespace fleet
