#include "featuresets/adapters/config/chain/ConfigChangeObservers.h"

#include "RecordingObserver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <utility>

namespace ZelUnified {
namespace {

ConfigChange makeChange(std::wstring value) {
    ConfigChange change;
    change.value = std::move(value);
    change.originalValue = L"original value";
    change.isOverridden = true;
    change.isDefined = true;
    change.valueStoreName = L"S";
    change.originalValueStoreName = L"O";
    return change;
}

} // namespace

using testing::ElementsAre;

TEST(ConfigChangeObservers, CallsEachObserverOnceAndIgnoresNull) {
    ConfigChangeObservers observers;
    RecordingObserver first;
    RecordingObserver second;
    observers.add(nullptr);
    for (auto* const observer : {&first, &second, &second}) {
        observers.add(observer);
    }
    observers.notifyConfigAddedOrUpdated(L"k", makeChange(L"v"), true);
    observers.notifyFireIfRequired(L"k");
    observers.notifySensitiveKey(L"k");
    EXPECT_THAT(first.announcements,
                ElementsAre("k: v [S] | original value [O] overridden deferred", "fire k", "sensitive k"));
    EXPECT_EQ(second.announcements, first.announcements);
}

TEST(ConfigChangeObservers, AnObserverMayCallBack) {
    ConfigChangeObservers observers;
    RecordingObserver observer;
    observers.add(&observer);
    observer.reaction = [&](const std::wstring& key) {
        if (key == L"outer") {
            observers.notifySensitiveKey(L"inner");
        }
    };
    observers.notifyFireIfRequired(L"outer");
    EXPECT_THAT(observer.announcements, ElementsAre("fire outer", "sensitive inner"));
}

TEST(ConfigChangeObservers, AnExceptionOfAnObserverReachesTheCaller) {
    ConfigChangeObservers observers;
    RecordingObserver observer;
    observers.add(&observer);
    observer.reaction = [](const std::wstring&) { throw std::runtime_error("refused"); };
    EXPECT_THROW(observers.notifyConfigAddedOrUpdated(L"k", makeChange(L"v"), true), std::runtime_error);
    EXPECT_THROW(observers.notifyFireIfRequired(L"k"), std::runtime_error);
    EXPECT_THROW(observers.notifySensitiveKey(L"k"), std::runtime_error);
}

TEST(ConfigChangeObservers, WithoutAnObserverNotifiesNobody) {
    ConfigChangeObservers observers;
    auto change = makeChange(L"v");
    observers.notifyConfigAddedOrUpdated(L"k", std::move(change), false);
    // NOLINTNEXTLINE(bugprone-use-after-move): the texts are moved into the last observer only
    EXPECT_EQ(change.value, L"v");
}

} // namespace ZelUnified
