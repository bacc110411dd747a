#pragma once

#include "Task.h"

#include <unified/FeatureSetReadyListener.h>
#include <unified/UnifiedBusinessObjectImpl.h>
#include <unified/UnifiedFactoryImpl.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace unified_test {

using namespace ZelUnified;

inline constexpr unsigned int id = 1300;

/// Records events in order. Any thread.
class Journal {
public:
    void add(std::string entry) {
        const std::lock_guard lock(mutex);
        entries.push_back(std::move(entry));
    }
    std::vector<std::string> get() const {
        const std::lock_guard lock(mutex);
        return entries;
    }

private:
    mutable std::mutex mutex;
    std::vector<std::string> entries;
};

class TestFeatureSet : public FeatureSet {};

/// Records the calls it receives. Owns the factory, like a real feature set.
class RecordingFeatureSet final : public TestFeatureSet, public FeatureSetAdapter {
public:
    RecordingFeatureSet(std::shared_ptr<UnifiedFactory> owner, Journal& target)
        : factory(std::move(owner)), journal(target) {}
    ~RecordingFeatureSet() override { journal.add("gone"); }

    void StartFeatureSet(unsigned int, std::shared_ptr<ServiceEventList>) override {
        note("start");
        if (onStart) {
            onStart();
        }
        started = !refusesStart;
    }
    void StopFeatureSet(unsigned int, std::shared_ptr<ServiceEventList>) override {
        note("stop");
        started = false;
    }
    void Destroy() override {
        note("destroy");
        if (onDestroy) {
            onDestroy();
        }
        started = false;
    }
    bool IsFeatureSetStarted(unsigned int) override { return started; }
    bool IsFeatureSetProvisioned(unsigned int number) override { return hasAccess() && number == id; }
    std::vector<unsigned int> GetFeatureSetDependencies(unsigned int) override {
        return hasAccess() ? std::vector<unsigned int>{7} : std::vector<unsigned int>{};
    }

    std::function<void()> onStart;
    std::function<void()> onDestroy;
    bool refusesStart = false;

private:
    bool hasAccess() const { return factory->getServicesDispatcher()->checkForUpdateAccess(); }
    void note(const std::string& entry) { journal.add(hasAccess() ? entry : entry + " on a wrong thread"); }

    const std::shared_ptr<UnifiedFactory> factory;
    Journal& journal;
    bool started = false;
};

class TestService : public virtual UnifiedService {};

class ListeningService final : public UnifiedBusinessObjectImpl,
                               public virtual TestService,
                               public FeatureSetReadyListener {
public:
    ListeningService(std::shared_ptr<UnifiedFactory> owner, Journal& target)
        : UnifiedBusinessObjectImpl(owner, "ListeningService"), factory(std::move(owner)), journal(target) {}

    using UnifiedBusinessObjectImpl::addObserver;
    using UnifiedBusinessObjectImpl::removeObserver;
    void addObserver(std::weak_ptr<UnifiedServiceObserver>) override {}
    void removeObserver(std::weak_ptr<UnifiedServiceObserver>) override {}
    std::shared_ptr<UnifiedServiceNotifiers> getUnifiedServiceNotifiers() override { return nullptr; }
    bool getBulkUpdateInProgress() override { return false; }
    void onFeatureSetReady(bool ready) override {
        EnsureUpdateAccess(true);
        journal.add(ready ? "ready" : "not ready");
    }

private:
    void initNotifiers() override {}

    const std::shared_ptr<UnifiedFactory> factory;
    Journal& journal;
};

class ResetCallback final : public ProviderResetDataCallback {
public:
    explicit ResetCallback(std::function<void(int)> function) : work(std::move(function)) {}
    void InvokeResetData(ResetDataOptionEnum::ResetDataOption option) override { work(option); }

private:
    std::function<void(int)> work;
};

inline std::shared_ptr<UnifiedFactoryImpl>
makeFactory(UnifiedFactoryOptions::ServicesThread thread = UnifiedFactoryOptions::ServicesThread::Own) {
    UnifiedFactoryOptions options;
    options.servicesThread = thread;
    auto factory = std::make_shared<UnifiedFactoryImpl>(options);
    factory->Init();
    return factory;
}

/// Fails a test that leaks an object.
class UnifiedFactoryImplTest : public testing::Test {
protected:
    void TearDown() override {
        factory->Destroy();
        const std::weak_ptr<UnifiedFactoryImpl> watched = factory;
        featureSet.reset();
        factory.reset();
        EXPECT_TRUE(watched.expired()) << watched.use_count() << " references left";
    }

    void fileFeatureSet() {
        featureSet = std::make_shared<RecordingFeatureSet>(factory, journal);
        factory->getFeatureSets().registerItem(id, std::shared_ptr<TestFeatureSet>(featureSet));
    }
    void fileService() {
        factory->getServices().registerItem(
            id, std::shared_ptr<TestService>(std::make_shared<ListeningService>(factory, journal)));
    }
    void onServicesThread(std::function<void()> work) {
        factory->getServicesDispatcher()->enqueueBlock(task(std::move(work)), false);
    }

    Journal journal;
    std::shared_ptr<UnifiedFactoryImpl> factory = makeFactory();
    std::shared_ptr<RecordingFeatureSet> featureSet;
};

} // namespace unified_test
