#include "LocalFileTestSupport.h"

#include <chrono>
#include <cstring>

namespace xml_test {

using zel::storage::KeyResult;

KeyResult GatedKeyProvider::find(zel::storage::FileCategoryType::FileCategory, zel::storage::MasterKey& key) {
    std::memset(key.data(), 7, zel::storage::MasterKey::length);
    return KeyResult::Found;
}

KeyResult GatedKeyProvider::findOrMake(zel::storage::FileCategoryType::FileCategory category,
                                       zel::storage::MasterKey& key) {
    std::unique_lock lock(mutex);
    hasWriter = true;
    changed.notify_all();
    changed.wait(lock, [this] { return isOpen; });
    hasWriter = false;
    return find(category, key);
}

void GatedKeyProvider::close() {
    const std::lock_guard lock(mutex);
    isOpen = false;
}

void GatedKeyProvider::open() {
    const std::lock_guard lock(mutex);
    isOpen = true;
    changed.notify_all();
}

bool GatedKeyProvider::waitForWriter() {
    std::unique_lock lock(mutex);
    return changed.wait_for(lock, std::chrono::minutes(1), [this] { return hasWriter; });
}

std::wstring valueOf(ZelUnified::ConfigStore& store, const std::wstring& key) {
    std::wstring value;
    return store.getValue(key, value) ? value : L"(none)";
}

std::string localDocument(const std::string& entries) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" +
           (entries.empty() ? std::string("<Lumora/>\n") : "<Lumora>\n" + entries + "</Lumora>\n");
}

} // namespace xml_test
