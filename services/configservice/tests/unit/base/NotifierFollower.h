#pragma once

#include <unified/PropertyNotifier.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ZelUnified {

/// Records the firings of the notifiers of a set, in order.
struct NotifierFollower {
    using Names = std::vector<std::string>;

    void follow(const std::shared_ptr<PropertyNotifier>& notifier, const std::string& property) {
        notifier->connect([this, property] { fired.push_back(property); });
    }
    Names take() { return std::exchange(fired, {}); }

    Names fired;
};

} // namespace ZelUnified
