#include "ConfigAdapterFixture.h"
#include "base/TestObjects.h"

namespace ZelUnified {

/// Tests how a refresh differs from the first construction.
class ConfigAdapterRefresh : public ConfigAdapterFixture {
protected:
    std::wstring derivedTelephony() {
        return adapter->getValueFromConfigStore("InMemoryConfigStore", L"Telephony_Enabled");
    }
};

TEST_F(ConfigAdapterRefresh, DerivesTheFlagsBeforeThePolicyAndConstructionAfterIt) {
    givenDefaults({{L"Telephony_Enabled", L"true"}});
    loadAndStart();
    adapter->setConfig(L"CtiServer1", L"mine");
    unload();
    givenPolicy(L"Customize_Phone_Server", L"false");
    testing_host::writeFile(cacheFile("TftpConfigStore"), "a copy, by its name");
    load();
    EXPECT_EQ(derivedTelephony(), L"false") << "the user's server was removed before";
    start();
    adapter->setConfig(L"CtiServer1", L"mine again");
    factory->backgroundDispatcher->runAll();
    adapter->refreshConfigFeatureSet();
    EXPECT_EQ(derivedTelephony(), L"true") << "the user's server was not removed";
    EXPECT_EQ(valueOf(L"CtiServer1"), L"(none)");
}

TEST_F(ConfigAdapterRefresh, OfAStartedAdapterReadsWithoutTheErrorLinesOfConstruction) {
    load();
    const auto guarded = countLogged("Config FeatureSet Not Started");
    start();
    log.clear();
    adapter->refreshConfigFeatureSet();
    EXPECT_EQ(countLogged("Config FeatureSet Not Started"), 0);
    EXPECT_GT(guarded, 0);
}

TEST_F(ConfigAdapterRefresh, AddsTheUsersStoreBeforeThePolicy) {
    givenPolicy(L"PolicyKey", L"policy");
    loadAndStart();
    adapter->setConfig(L"UserKey", L"user");
    factory->backgroundDispatcher->runAll();
    adapter->StopFeatureSet(configServiceId, nullptr);
    std::vector<std::wstring> announced;
    const auto observe = [&](const std::wstring& key) {
        auto observer = std::make_shared<configservice_test::RecordingValueObserver>();
        observer->reaction = [&announced, key](const std::string& property) {
            if (property == "Value") {
                announced.push_back(key);
            }
        };
        service->getConfig(key)->addObserver(std::weak_ptr<ConfigValueObserver>(observer));
        return observer;
    };
    const auto observers = {observe(L"UserKey"), observe(L"PolicyKey")};
    adapter->refreshConfigFeatureSet();
    EXPECT_THAT(announced, testing::ElementsAre(L"UserKey", L"PolicyKey"));
}

} // namespace ZelUnified
