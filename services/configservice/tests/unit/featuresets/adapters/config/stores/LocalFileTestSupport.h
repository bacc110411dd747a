#pragma once

#include "services/impl/ConfigFileCacheTimer.h"
#include "services/impl/ConfigFileCacheTimerCallBack.h"

#include <zel/KeyProvider.h>

#include <LocalFileConfigStore.h>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace xml_test {

/// Records the scheduled backup; the test fires it.
class RecordingCacheTimer final : public ZelUnified::ConfigFileCacheTimer {
public:
    struct Request {
        std::shared_ptr<ZelUnified::ConfigFileCacheTimerCallBack> callback;
        int milliseconds;
    };

    RecordingCacheTimer() : ConfigFileCacheTimer(nullptr) {}
    void scheduleTimer(std::shared_ptr<ZelUnified::ConfigFileCacheTimerCallBack> callback, int milliseconds) override {
        requests.push_back({std::move(callback), milliseconds});
    }

    std::vector<Request> requests;
};

/// Returns one fixed key. A writer waits until the gate is open.
class GatedKeyProvider final : public zel::storage::KeyProvider {
public:
    zel::storage::KeyResult find(zel::storage::FileCategoryType::FileCategory category,
                                 zel::storage::MasterKey& key) override;
    zel::storage::KeyResult findOrMake(zel::storage::FileCategoryType::FileCategory category,
                                       zel::storage::MasterKey& key) override;

    void close();
    void open();
    /// Waits until a writer waits at the closed gate. Returns false after a minute.
    bool waitForWriter();

private:
    std::mutex mutex;
    std::condition_variable changed;
    bool isOpen = true;
    bool hasWriter = false;
};

/// Returns the value, or "(none)".
std::wstring valueOf(ZelUnified::ConfigStore& store, const std::wstring& key);

/// Returns the document of a local file with these entries in the root.
std::string localDocument(const std::string& entries);

} // namespace xml_test
