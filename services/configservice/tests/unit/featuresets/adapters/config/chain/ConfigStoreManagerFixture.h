#pragma once

#include "FakeConfigStore.h"
#include "RecordingObserver.h"
#include "featuresets/adapters/config/chain/ConfigStoreManager.h"

#include <LogRecorder.h>
#include <RecordingFactory.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace ZelUnified {

/// A manager on a factory without threads, with its announcements and log lines recorded.
class ConfigStoreManagerFixture : public testing::Test {
protected:
    static constexpr const char* loggerName = "ConfigService-ConfigStoreManager";

    ConfigStoreManagerFixture() {
        manager.addObserver(&observer);
        log.clear();
    }
    ~ConfigStoreManagerFixture() override { factory->backgroundDispatcher->clear(); }

    /// Adds a store and clears the records.
    template <class Store>
    std::shared_ptr<Store> given(std::shared_ptr<Store> store) {
        manager.addStore(store);
        forget();
        return store;
    }

    void forget() {
        observer.announcements.clear();
        factory->backgroundDispatcher->clear();
        log.clear();
    }

    std::vector<std::string> logged() const { return log.getTexts(loggerName); }
    /// Returns the manager's lines at that level. Comparing them with logged() shows that there are no others.
    std::vector<std::string> loggedAt(ZelLogLevel level) const {
        std::vector<std::string> texts;
        for (const auto& record : log.getRecords()) {
            if (record.logger == loggerName && record.level == level) {
                texts.push_back(record.text);
            }
        }
        return texts;
    }

    std::wstring valueOf(const std::wstring& key) const {
        std::wstring value;
        return manager.getValue(key, value) ? value : L"(none)";
    }

    testing_host::LogRecorder log;
    RecordingObserver observer;
    const std::shared_ptr<testing_host::RecordingFactory> factory = std::make_shared<testing_host::RecordingFactory>();
    ConfigStoreManager manager{factory};
};

} // namespace ZelUnified
