#include "AnnouncementOrder.h"

namespace ZelUnified {

std::uint64_t AnnouncementOrder::addQueued() noexcept {
    const auto number = ++lastNumber;
    lastQueued = number;
    return number;
}

void AnnouncementOrder::addDirect(const std::wstring& key) {
    const auto number = ++lastNumber;
    if (lastRemoved < lastQueued) {
        directNumbers.insert_or_assign(key, number);
    }
}

bool AnnouncementOrder::removeQueued(const std::wstring& key, std::uint64_t number) {
    const auto direct = directNumbers.find(key);
    const bool isCurrent = direct == directNumbers.end() || direct->second < number;
    lastRemoved = number;
    if (lastRemoved == lastQueued) {
        directNumbers.clear();
    }
    return isCurrent;
}

} // namespace ZelUnified
