#include "StoreArrivals.h"

#include "output/TimeText.h"

#include <chrono>
#include <functional>

namespace lumora_config {

namespace {

std::string now() {
    return formatTime(std::chrono::system_clock::now());
}

} // namespace

void StoreArrivals::add(const std::shared_ptr<ZelUnified::ConfigStore>& store, Kind kind, const std::string& file) {
    if (store) {
        arrivals.insert_or_assign(store, Arrival{kind, file, now()});
    }
}

void StoreArrivals::addValue(const std::shared_ptr<ZelUnified::ConfigStore>& store, const std::wstring& key,
                             const std::wstring& value) {
    if (store) {
        values.insert_or_assign(key, Value{store, std::hash<std::wstring>()(value), now()});
    }
}

const StoreArrivals::Arrival* StoreArrivals::find(const std::shared_ptr<ZelUnified::ConfigStore>& store) const {
    const auto found = arrivals.find(store);
    return found == arrivals.end() ? nullptr : &found->second;
}

std::string StoreArrivals::findTimeOfValue(const std::shared_ptr<ZelUnified::ConfigStore>& store,
                                           const std::wstring& key) const {
    const auto found = values.find(key);
    std::wstring value;
    const bool isSame = found != values.end() && found->second.store.lock() == store && store->getValue(key, value) &&
                        std::hash<std::wstring>()(value) == found->second.hash;
    return isSame ? found->second.when : std::string();
}

} // namespace lumora_config
