#include "featuresets/adapters/config/cache/CachedStoreRecord.h"
#include "featuresets/adapters/config/chain/FakeConfigStore.h"
#include "services/impl/entry/InjectConfigService.h"

#include <kyr/FunctionTask.h>
#include <kyr/StringUtils.h>
#include <unified/UnifiedFactoryImpl.h>
#include <unified/UpdateAccessError.h>

#include <ConfigFeatureSet.h>
#include <ConfigKeys.h>
#include <ConfigService.h>
#include <ConfigServiceIds.h>
#include <InMemoryRegistry.h>
#include <Signal.h>
#include <TemporaryProfile.h>
#include <Watchdog.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <latch>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace ZelUnified {

namespace {

/// Calls a function at each change of the value.
class ReactingObserver final : public ConfigValueObserver {
public:
    explicit ReactingObserver(std::function<void()> function) : reaction(std::move(function)) {}
    void OnKeyChanged() override {}
    void OnValueChanged() override { reaction(); }
    void OnOriginalValueChanged() override {}
    void OnisOverriddenChanged() override {}
    void OnisDefinedChanged() override {}
    void OnValueStoreNameChanged() override {}
    void OnOriginalValueStoreNameChanged() override {}

private:
    std::function<void()> reaction;
};

/// The service as a program runs it: on a factory with its own threads. A deadlock ends the test with the stacks.
class ConfigAdapterThreads : public testing::Test {
protected:
    ConfigAdapterThreads() {
        factory->Init();
        onDispatcher([this] { InjectConfigService(factory); });
        factory->StartFeatureSet(configServiceId, nullptr);
        service = factory->getServiceByType<ConfigService>();
        featureSet = factory->getFeatureSetByType<ConfigFeatureSet>();
    }
    ~ConfigAdapterThreads() override { end(); }

    void end() {
        service.reset();
        featureSet.reset();
        factory->Destroy();
    }

    /// Runs the work on the services dispatcher's thread. Waits for it and for all tasks posted before.
    void onDispatcher(const std::function<void()>& work) {
        factory->getServicesDispatcher()->enqueueBlock(std::make_shared<KyrCoreUtils::FunctionTask>(work, "test"),
                                                       false);
    }
    std::wstring recordOf(const std::wstring& key) {
        std::wstring value;
        onDispatcher([&] { value = service->getConfig(key)->getValue(); });
        return value;
    }
    void observe(const std::wstring& key, const std::shared_ptr<ReactingObserver>& observer) {
        onDispatcher([&] { service->getConfig(key)->addObserver(std::weak_ptr<ConfigValueObserver>(observer)); });
    }
    bool isOnDispatcher() const { return factory->getServicesDispatcher()->checkForUpdateAccess(); }

    static void runInThreads(int count, const std::function<void(int)>& work) {
        std::vector<std::thread> threads;
        for (int i = 0; i < count; ++i) {
            threads.emplace_back(work, i);
        }
        for (auto& thread : threads) {
            thread.join();
        }
    }

    const testing_host::TemporaryProfile profile;
    const testing_host::InMemoryRegistry::Installed registry;
    const testing_host::Watchdog watchdog;
    const std::shared_ptr<UnifiedFactoryImpl> factory = std::make_shared<UnifiedFactoryImpl>();
    std::shared_ptr<ConfigService> service;
    std::shared_ptr<ConfigFeatureSet> featureSet;
};

constexpr int rounds = 40;

} // namespace

TEST_F(ConfigAdapterThreads, AWriteOnAWorkerCallsObserversOnTheServicesDispatcher) {
    testing_host::Signal received;
    std::atomic<bool> onTheRightThread = false;
    const auto observer = std::make_shared<ReactingObserver>([&] {
        onTheRightThread = isOnDispatcher();
        received.set();
    });
    observe(L"k", observer);
    std::thread([this] { featureSet->setConfig(L"k", L"v"); }).join();
    ASSERT_TRUE(received.wait());
    EXPECT_TRUE(onTheRightThread);
    EXPECT_EQ(recordOf(L"k"), L"v");
}

TEST_F(ConfigAdapterThreads, CallFromTheWrongThreadIsRefusedAndChangesNothing) {
    EXPECT_THROW(service->setConfig(L"k", L"v"), UpdateAccessError);
    EXPECT_THROW(service->getConfig(L"k"), UpdateAccessError);
    std::wstring value;
    EXPECT_FALSE(featureSet->getConfig(L"k", value, false));
}

TEST_F(ConfigAdapterThreads, EightThreadsAddRemoveAndLookUpStoresConcurrently) {
    runInThreads(8, [this](int number) {
        const auto name = "Store" + std::to_string(number % 4);
        std::wstring value;
        for (int round = 0; round < rounds; ++round) {
            featureSet->addConfigStore(
                makeReadOnlyStore(name, 40 + number, {{L"shared", std::to_wstring(number)}, {L"TftpServer1", L"t"}}));
            featureSet->getConfig(L"shared", value, round % 2 == 0);
            featureSet->getConfigStoreByName(name);
            featureSet->setConfig(L"own" + std::to_wstring(number), std::to_wstring(round));
            featureSet->removeConfigStore(name);
        }
    });
    for (int number = 0; number < 4; ++number) {
        EXPECT_FALSE(featureSet->isConfigStorePresent("Store" + std::to_string(number)));
    }
    std::wstring value;
    EXPECT_FALSE(featureSet->getConfig(L"shared", value, false));
    for (int number = 0; number < 8; ++number) {
        EXPECT_EQ(recordOf(L"own" + std::to_wstring(number)), std::to_wstring(rounds - 1));
    }
}

TEST_F(ConfigAdapterThreads, StoresAddedConcurrentlyAreAllInTheRecordOfCopies) {
    constexpr int count = 8;
    for (int round = 0; round < rounds; ++round) {
        const auto nameOf = [round](int number) {
            return "Store" + std::to_string(round) + "-" + std::to_string(number);
        };
        std::latch ready(count);
        runInThreads(count, [&](int number) {
            const auto store = makeReadOnlyStore(nameOf(number), 40);
            store->caching = true;
            ready.arrive_and_wait();
            featureSet->addConfigStore(store);
        });
        std::wstring record;
        ASSERT_TRUE(featureSet->getConfig(std::wstring(ConfigKeys::primaryConfigStores), record, false));
        const auto priorities = CachedStoreRecord::getCachedConfigStorePrioityMap(record);
        for (int number = 0; number < count; ++number) {
            ASSERT_TRUE(priorities.contains(KyrCoreUtils::toWideString(nameOf(number))))
                << nameOf(number) << " is not among " << priorities.size();
        }
    }
}

TEST_F(ConfigAdapterThreads, TheRecordOfCopiesIsCorrectAfterConcurrentAdditionsAndRemovals) {
    constexpr int pairs = 4;
    constexpr int fewRounds = 12; // each round writes a file for every store
    const auto nameOf = [](const char* group, int round, int number) {
        return group + std::to_string(round) + "-" + std::to_string(number);
    };
    const auto addCaching = [this](const std::string& name) {
        const auto store = makeReadOnlyStore(name, 40);
        store->caching = true;
        featureSet->addConfigStore(store);
    };
    for (int round = 0; round < fewRounds; ++round) {
        for (int number = 0; number < pairs; ++number) {
            addCaching(nameOf("Leaving", round, number));
        }
        std::latch ready(2 * pairs);
        runInThreads(2 * pairs, [&](int thread) {
            ready.arrive_and_wait();
            if (thread % 2 == 0) {
                addCaching(nameOf("Arriving", round, thread / 2));
            } else {
                EXPECT_TRUE(featureSet->removeConfigStore(nameOf("Leaving", round, thread / 2)));
            }
        });
        std::wstring record;
        ASSERT_TRUE(featureSet->getConfig(std::wstring(ConfigKeys::primaryConfigStores), record, false));
        const auto priorities = CachedStoreRecord::getCachedConfigStorePrioityMap(record);
        for (int number = 0; number < pairs; ++number) {
            ASSERT_TRUE(priorities.contains(KyrCoreUtils::toWideString(nameOf("Arriving", round, number)))) << round;
            ASSERT_FALSE(priorities.contains(KyrCoreUtils::toWideString(nameOf("Leaving", round, number)))) << round;
        }
    }
}

TEST_F(ConfigAdapterThreads, SettingsMadeWhileAWorkerAddsALargeStoreAreKept) {
    constexpr int keys = 500;
    const auto store = makeReadOnlyStore("S", 100);
    for (int i = 0; i < keys; ++i) {
        store->values[L"key" + std::to_wstring(i)] = L"store";
    }
    // The worker holds the chain's lock when the first setting is made, so all its announcements are queued before.
    const auto arriving = std::make_shared<testing_host::Signal>();
    store->beforeReading = [arriving] { arriving->set(); };
    std::thread worker;
    onDispatcher([&] {
        worker = std::thread([&] { featureSet->addConfigStore(store); });
        ASSERT_TRUE(arriving->wait());
        for (int i = 0; i < keys; i += 3) {
            service->setConfig(L"KEY" + std::to_wstring(i), L"user" + std::to_wstring(i));
        }
    });
    worker.join();
    for (int i = 0; i < keys; ++i) {
        const auto key = L"key" + std::to_wstring(i);
        EXPECT_EQ(recordOf(key), i % 3 == 0 ? L"user" + std::to_wstring(i) : L"store") << i;
    }
}

TEST_F(ConfigAdapterThreads, TheRecordEqualsTheLookupAfterSeveralThreadsChangedOneKey) {
    constexpr std::uint32_t workers = 3;
    const auto change = [this](std::uint_fast32_t choice, const std::wstring& value) {
        switch (choice % 5) {
        case 0:
            featureSet->addConfigStore(makeReadOnlyStore("S", 10, {{L"K", value}}));
            break;
        case 1:
            featureSet->removeConfigStore("S");
            break;
        case 2:
            featureSet->resetConfig(L"k");
            break;
        default:
            featureSet->setConfig(L"k", value);
        }
    };
    for (std::uint32_t round = 0; round < rounds; ++round) {
        std::latch ready(workers + 1);
        const auto changeAtRandom = [&](std::uint32_t number) {
            std::mt19937 random(round * (workers + 1) + number);
            ready.arrive_and_wait();
            for (int step = 0; step < 25; ++step) {
                change(random(), std::to_wstring(number) + L"-" + std::to_wstring(step));
            }
        };
        runInThreads(workers + 1, [&](int number) {
            const auto own = static_cast<std::uint32_t>(number);
            if (own < workers) {
                changeAtRandom(own);
            } else {
                onDispatcher([&] { changeAtRandom(own); }); // before what the others queue meanwhile
            }
        });
        onDispatcher([&] {
            std::wstring value;
            const bool isDefined = featureSet->getConfig(L"k", value, false);
            const auto record = service->getConfig(L"k");
            EXPECT_EQ(record->getValue(), value) << "round " << round;
            EXPECT_EQ(record->getisDefined(), isDefined) << "round " << round;
        });
        ASSERT_FALSE(HasFailure());
    }
}

TEST_F(ConfigAdapterThreads, AnObserverMayReadWriteAddAndRemoveStoresWhileOtherThreadsDo) {
    std::atomic<int> reactions = 0;
    const auto observer = std::make_shared<ReactingObserver>([&] {
        const auto name = "Nested" + std::to_string(++reactions % 3);
        std::wstring value;
        featureSet->getConfig(L"watched", value, false);
        service->setInMemoryConfig(L"nested", value);
        featureSet->addConfigStore(makeReadOnlyStore(name, 50, {{L"nestedKey", L"1"}}));
        featureSet->removeConfigStore(name);
    });
    observe(L"watched", observer);
    runInThreads(4, [this](int number) {
        for (int round = 0; round < rounds; ++round) {
            featureSet->setInMemoryConfig(L"watched", std::to_wstring(number) + L"-" + std::to_wstring(round));
        }
    });
    onDispatcher([] {});
    EXPECT_GT(reactions, 0);
    EXPECT_FALSE(featureSet->isConfigStorePresent("Nested0"));
}

TEST_F(ConfigAdapterThreads, ObserverMayCallBackIntoTheService) {
    const auto observer = std::make_shared<ReactingObserver>([this] {
        const auto record = service->getConfig(L"k");
        if (record->getValue() == L"first") {
            record->storeValueAndNotify(L"second");
            service->getAllConfig();
            service->logConfig();
        } else if (record->getValue() == L"second") {
            record->resetToDefault();
        }
    });
    observe(L"k", observer);
    onDispatcher([this] { service->setConfig(L"k", L"first"); });
    EXPECT_EQ(recordOf(L"k"), L"");
}

TEST_F(ConfigAdapterThreads, StopFromAnotherThreadWaitsForTheDispatcher) {
    featureSet->addConfigStore([] {
        auto store = makeReadOnlyStore("Remote", 100, {{L"k", L"v"}});
        store->local = false;
        return store;
    }());
    // The dispatcher runs a task that reads the state of the feature set itself.
    testing_host::Signal busy;
    factory->getServicesDispatcher()->enqueue(std::make_shared<KyrCoreUtils::FunctionTask>(
                                                  [&] {
                                                      busy.set();
                                                      for (int round = 0; round < rounds; ++round) {
                                                          factory->IsFeatureSetStarted(configServiceId);
                                                      }
                                                  },
                                                  "busy"),
                                              false);
    ASSERT_TRUE(busy.wait());
    factory->StopFeatureSet(configServiceId, nullptr);
    EXPECT_FALSE(factory->IsFeatureSetStarted(configServiceId));
    EXPECT_EQ(recordOf(L"k"), L"");
}

TEST_F(ConfigAdapterThreads, RefreshStopAndStartSucceedWhileWorkersWrite) {
    std::atomic<bool> ended = false;
    std::thread worker([&] {
        for (int round = 0; !ended; ++round) {
            featureSet->setConfig(L"k", std::to_wstring(round));
            // Limits the rate to that of the disk; otherwise the pending writes would grow without limit.
            factory->flushBackgroundDispatcher();
        }
    });
    for (int round = 0; round < 10; ++round) {
        onDispatcher([this] { featureSet->refreshConfigFeatureSet(); });
        factory->StopFeatureSet(configServiceId, nullptr);
        factory->StartFeatureSet(configServiceId, nullptr);
    }
    ended = true;
    worker.join();
    EXPECT_TRUE(factory->IsFeatureSetStarted(configServiceId));
}

TEST_F(ConfigAdapterThreads, ResetFromAnotherThreadLeavesAWorkingChain) {
    featureSet->setConfig(L"k", L"v");
    std::thread([this] { factory->invokeResetData(ResetDataOptionEnum::ResetAll); }).join();
    EXPECT_EQ(recordOf(L"k"), L"");
    featureSet->setConfig(L"k", L"w");
    EXPECT_EQ(recordOf(L"k"), L"w");
}

TEST_F(ConfigAdapterThreads, DestroyReleasesServiceAndFeatureSet) {
    const std::weak_ptr<ConfigService> watchedService = service;
    const std::weak_ptr<ConfigFeatureSet> watchedFeatureSet = featureSet;
    featureSet->setConfig(L"k", L"v");
    end();
    EXPECT_TRUE(watchedService.expired());
    EXPECT_TRUE(watchedFeatureSet.expired());
}

} // namespace ZelUnified
