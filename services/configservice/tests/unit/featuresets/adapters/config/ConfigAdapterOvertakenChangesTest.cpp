#include "ConfigAdapterFixture.h"
#include "StepwiseServicesDispatcher.h"
#include "base/TestObjects.h"

#include <map>
#include <random>

namespace ZelUnified {

using configservice_test::RecordingValueObserver;
using testing::ElementsAre;
using testing::IsEmpty;

/// Changes that are queued on the services dispatcher while later changes of the same key are applied directly.
class ConfigAdapterOvertakenChanges : public ConfigAdapterFixture {
protected:
    ConfigAdapterOvertakenChanges() {
        factory = stepwise;
        loadAndStart();
    }

    void onWorker() { stepwise->dispatcher->access = false; }
    void onDispatcher() { stepwise->dispatcher->access = true; }
    bool isQueueEmpty() const { return stepwise->dispatcher->posted.empty(); }
    void runQueue() {
        while (!isQueueEmpty()) {
            stepwise->dispatcher->step();
        }
    }

    std::shared_ptr<RecordingValueObserver> observe(const std::wstring& key) {
        auto observer = std::make_shared<RecordingValueObserver>();
        service->getConfig(key)->addObserver(std::weak_ptr<ConfigValueObserver>(observer));
        return observer;
    }

    /// Compares the complete result of a lookup with the record.
    void expectRecordEqualsLookup(const std::wstring& key) {
        std::wstring value;
        std::wstring storeName;
        bool valueFromLegacyKey = false;
        const bool isDefined = adapter->getConfig(key, value, storeName, valueFromLegacyKey, false);
        std::wstring original;
        adapter->getConfig(key, original, true);
        const auto record = service->getConfig(key);
        EXPECT_EQ(record->getValue(), value);
        EXPECT_EQ(record->getisDefined(), isDefined);
        EXPECT_EQ(record->getValueStoreName(), storeName);
        EXPECT_EQ(record->getOriginalValue(), original);
    }

    const std::shared_ptr<StepwiseFactory> stepwise = std::make_shared<StepwiseFactory>();
};

TEST_F(ConfigAdapterOvertakenChanges, AQueuedWriteDoesNotOverwriteALaterDirectOne) {
    const auto observer = observe(L"k");
    onWorker();
    adapter->setConfig(L"k", L"v11");
    onDispatcher();
    service->setConfig(L"k", L"v12");
    EXPECT_EQ(recordOf(L"k"), L"v12");
    observer->received.clear();
    runQueue();
    EXPECT_EQ(valueOf(L"k"), L"v12");
    EXPECT_EQ(recordOf(L"k"), L"v12");
    EXPECT_THAT(observer->received, IsEmpty());
}

TEST_F(ConfigAdapterOvertakenChanges, TheKeyOfAnOvertakenWriteIsComparedIgnoringCase) {
    onWorker();
    adapter->setConfig(L"PHONE_MODE", L"v11");
    onDispatcher();
    service->setConfig(L"Phone_Mode", L"v12");
    runQueue();
    EXPECT_EQ(recordOf(L"phone_mode"), L"v12");
}

TEST_F(ConfigAdapterOvertakenChanges, ADirectWriteOfAnOldNameOvertakesTheQueuedOneOfTheNewName) {
    onWorker();
    adapter->setConfig(L"TftpServer1", L"v11");
    onDispatcher();
    service->setConfig(L"tftpserver1", L"v12");
    runQueue();
    EXPECT_EQ(valueOf(L"TFTPPrimaryServer"), L"v12");
    EXPECT_EQ(recordOf(L"TFTPPrimaryServer"), L"v12");
}

TEST_F(ConfigAdapterOvertakenChanges, AQueuedWriteDoesNotUndoALaterDirectRemoval) {
    onWorker();
    adapter->setConfig(L"k", L"v");
    onDispatcher();
    service->resetConfig(L"k");
    runQueue();
    EXPECT_FALSE(service->getConfig(L"k")->getisDefined());
    expectRecordEqualsLookup(L"k");
}

TEST_F(ConfigAdapterOvertakenChanges, AWriteQueuedAfterTheDirectOneIsApplied) {
    onWorker();
    adapter->setConfig(L"k", L"v11");
    onDispatcher();
    service->setConfig(L"k", L"v12");
    onWorker();
    adapter->setConfig(L"k", L"v13");
    ASSERT_EQ(stepwise->dispatcher->posted.size(), 2U);
    stepwise->dispatcher->step();
    EXPECT_EQ(recordOf(L"k"), L"v12");
    stepwise->dispatcher->step();
    EXPECT_EQ(recordOf(L"k"), L"v13");
}

TEST_F(ConfigAdapterOvertakenChanges, QueuedWritesOfOtherKeysAreApplied) {
    onWorker();
    adapter->setConfig(L"a", L"1");
    adapter->setConfig(L"k", L"v11");
    adapter->setConfig(L"b", L"2");
    onDispatcher();
    service->setConfig(L"k", L"v12");
    runQueue();
    EXPECT_EQ(recordOf(L"a"), L"1");
    EXPECT_EQ(recordOf(L"b"), L"2");
    EXPECT_EQ(recordOf(L"k"), L"v12");
}

TEST_F(ConfigAdapterOvertakenChanges, ADirectWriteOvertakesADeferredChangeOfAStoreBeingAdded) {
    const auto observer = observe(L"k");
    onWorker();
    adapter->addConfigStore(makeReadOnlyStore("S", 100, {{L"a", L"1"}, {L"k", L"store"}, {L"z", L"3"}}));
    onDispatcher();
    service->setConfig(L"k", L"user");
    EXPECT_THAT(observer->received, ElementsAre("Value", "OriginalValue", "isOverridden", "isDefined", "ValueStoreName",
                                                "OriginalValueStoreName"));
    observer->received.clear();
    runQueue();
    EXPECT_THAT(observer->received, IsEmpty());
    for (const auto* key : {L"a", L"k", L"z"}) {
        expectRecordEqualsLookup(key);
    }
    EXPECT_TRUE(service->getConfig(L"k")->getisOverridden());
}

TEST_F(ConfigAdapterOvertakenChanges, AQueuedFiringFiresADeferredDirectChangeThatOvertookItsChange) {
    const auto observer = observe(L"k");
    onWorker();
    adapter->onConfigAddedOrUpdated(L"k", L"old", L"", false, true, L"S", L"", true);
    adapter->onFireIfRequired(L"k");
    onDispatcher();
    adapter->onConfigAddedOrUpdated(L"k", L"new", L"", false, true, L"S", L"", true);
    EXPECT_THAT(observer->received, IsEmpty());
    runQueue();
    EXPECT_EQ(recordOf(L"k"), L"new");
    EXPECT_THAT(observer->received, ElementsAre("Value", "isDefined", "ValueStoreName"));
}

TEST_F(ConfigAdapterOvertakenChanges, SettingsMadeWhileALargeStoreIsAddedAreKept) {
    constexpr int keys = 500;
    ConfigMap values;
    for (int i = 0; i < keys; ++i) {
        values[L"key" + std::to_wstring(i)] = L"store";
    }
    onWorker();
    adapter->addConfigStore(makeReadOnlyStore("S", 100, values));
    ASSERT_EQ(stepwise->dispatcher->posted.size(), 2U * keys);
    for (int i = 0; i < keys; ++i) {
        stepwise->dispatcher->step();
        if (i % 3 == 0) {
            service->setConfig(L"key" + std::to_wstring((i * 7) % keys), L"user" + std::to_wstring(i));
        }
    }
    runQueue();
    for (int i = 0; i < keys; ++i) {
        SCOPED_TRACE(i);
        expectRecordEqualsLookup(L"key" + std::to_wstring(i));
    }
}

TEST_F(ConfigAdapterOvertakenChanges, AfterAnySequenceRecordsEqualTheirLookupsAndObserversSawThem) {
    const std::wstring keys[] = {L"k", L"K", L"other", L"Phone_Mode"};
    const std::string stores[] = {"First", "Second"};
    std::map<std::wstring, std::wstring> shown;
    std::vector<std::shared_ptr<RecordingValueObserver>> observers;
    for (const auto& key : keys) {
        observers.push_back(observe(key));
        observers.back()->reaction = [this, &shown, key](const std::string& property) {
            if (property == "Value") {
                shown[key] = recordOf(key);
            }
        };
    }
    std::mt19937 random(14);
    const auto below = [&](std::size_t limit) { return static_cast<std::size_t>(random() % limit); };
    int written = 0;
    const auto change = [&] {
        const auto& key = keys[below(std::size(keys))];
        const auto value = L"value" + std::to_wstring(++written);
        const auto number = below(std::size(stores));
        switch (below(6)) {
        case 0:
            return adapter->setInMemoryConfig(key, value);
        case 1:
            adapter->resetConfig(key);
            return true;
        case 2:
            adapter->addConfigStore(makeReadOnlyStore(stores[number], number == 0 ? 10 : 700, {{key, value}}));
            return true;
        case 3:
            return adapter->removeConfigStore(stores[number]);
        default:
            return adapter->setConfig(key, value);
        }
    };
    for (int history = 0; history < 1000; ++history) {
        SCOPED_TRACE(history);
        for (int step = 0; step < 12; ++step) {
            stepwise->dispatcher->access = below(2) == 0;
            change();
            for (auto turns = below(3); turns > 0 && !isQueueEmpty(); --turns) {
                stepwise->dispatcher->step();
            }
        }
        runQueue();
        onDispatcher();
        factory->backgroundDispatcher->clear();
        for (const auto& key : keys) {
            expectRecordEqualsLookup(key);
            EXPECT_EQ(shown[key], recordOf(key));
        }
        ASSERT_FALSE(HasFailure());
    }
}

} // namespace ZelUnified
