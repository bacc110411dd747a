#include <kyr/AnnotatedMutex.h>
#include <kyr/LockGuard.h>
#include <zel/Resources.h>

#include <algorithm>
#include <vector>

namespace zel {

namespace {

struct Carriers {
    KyrCoreUtils::AnnotatedMutex<> mutex;
    std::vector<const Resource*> all LUMORA_GUARDED_BY(mutex);
};

/// Never destroyed: libraries remove themselves from the list while the process ends, in an unknown order.
Carriers& carriers() {
    static auto& held = *new Carriers;
    return held;
}

} // namespace

std::optional<std::string_view> Resources::find(std::string_view type, std::string_view name) {
    auto& known = carriers();
    const KyrCoreUtils::LockGuard lock(known.mutex);
    const auto found = std::find_if(known.all.begin(), known.all.end(), [&](const Resource* resource) {
        return resource->type == type && resource->name == name;
    });
    return found == known.all.end() ? std::nullopt : std::optional((*found)->content);
}

CarriedResources::CarriedResources(std::span<const Resource> carried) : table(carried) {
    auto& known = carriers();
    const KyrCoreUtils::LockGuard lock(known.mutex);
    for (const auto& resource : table) {
        known.all.push_back(&resource);
    }
}

CarriedResources::~CarriedResources() {
    auto& known = carriers();
    const KyrCoreUtils::LockGuard lock(known.mutex);
    std::erase_if(known.all, [this](const Resource* resource) {
        return std::any_of(table.begin(), table.end(), [&](const Resource& own) { return &own == resource; });
    });
}

} // namespace zel
