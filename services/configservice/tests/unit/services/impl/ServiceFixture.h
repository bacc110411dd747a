#pragma once

#include "FeatureSetMock.h"
#include "base/TestObjects.h"
#include "services/impl/ConfigServiceImpl.h"

#include <zel/FipsUtils.h>

#include <ConfigServiceIds.h>
#include <RecordingFactory.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace configservice_test {

inline constexpr auto serviceLogger = "ConfigService-ConfigServiceImpl";

/// A service on a factory without threads, with FIPS mode off whatever the machine's setting.
struct ServiceFixture : testing::Test {
    ServiceFixture() { zel::common::FipsUtils::overrideFipsMode(false); }
    ~ServiceFixture() override {
        factory->Destroy();
        zel::common::FipsUtils::overrideFipsMode(std::nullopt);
    }

    /// Registers a feature set with the factory.
    std::shared_ptr<testing::StrictMock<ZelUnified::FeatureSetMock>> fileFeatureSet() {
        auto featureSet = std::make_shared<testing::StrictMock<ZelUnified::FeatureSetMock>>();
        factory->getFeatureSets().registerItem<ZelUnified::ConfigFeatureSet>(ZelUnified::configServiceId, featureSet);
        return featureSet;
    }

    /// Announces a change of the value only, from one store.
    void announce(const std::wstring& key, const std::wstring& value, bool deferFire = false) {
        service->OnConfigChanged(key, value, L"", false, true, L"Store", L"", deferFire);
    }

    std::shared_ptr<RecordingValueObserver> observe(const std::wstring& key) {
        auto observer = std::make_shared<RecordingValueObserver>();
        service->getConfig(key)->addObserver(observer);
        return observer;
    }

    std::shared_ptr<testing_host::RecordingFactory> factory = std::make_shared<testing_host::RecordingFactory>();
    std::shared_ptr<ZelUnified::ConfigServiceImpl> service = std::make_shared<ZelUnified::ConfigServiceImpl>(factory);
};

} // namespace configservice_test
