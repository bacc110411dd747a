#include <kyr/FunctionTask.h>
#include <unified/TypeName.h>
#include <unified/UnifiedFactoryImpl.h>
#include <zel/Resources.h>

#include <ConfigFeatureSet.h>
#include <ConfigService.h>
#include <ConfigServiceIds.h>
#include <DirectoryService.h>
#include <TemporaryProfile.h>
#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;

class ForeignServiceTest : public testing::Test {
protected:
    ForeignServiceTest() {
        ZelUnified::UnifiedFactoryOptions options;
        options.pluginFolder = PLUGIN_FOLDER;
        options.plugins = {{ZelUnified::readableTypeName<ZelUnified::ConfigService>(), SERVICE_LIBRARY},
                           {ZelUnified::readableTypeName<ZelUnified::ConfigFeatureSet>(), SERVICE_LIBRARY},
                           {ZelUnified::readableTypeName<example::DirectoryService>(), FOREIGN_LIBRARY}};
        factory = std::make_shared<ZelUnified::UnifiedFactoryImpl>(std::move(options));
        factory->Init();
        directory = factory->getFeatureSetByType<example::DirectoryService>();
        factory->StartFeatureSet(ZelUnified::configServiceId, nullptr);
    }

    ~ForeignServiceTest() override {
        directory.reset();
        factory->Destroy();
    }

    std::wstring valueOf(const std::wstring& key) const {
        std::wstring value;
        factory->getServicesDispatcher()->enqueueBlock(
            std::make_shared<KyrCoreUtils::FunctionTask>(
                [&] { value = factory->getServiceByType<ZelUnified::ConfigService>()->getConfig(key)->getValue(); },
                "test"),
            false);
        return value;
    }

    const testing_host::TemporaryProfile profile;
    std::shared_ptr<ZelUnified::UnifiedFactoryImpl> factory;
    std::shared_ptr<example::DirectoryService> directory;
};

} // namespace

TEST_F(ForeignServiceTest, AddsAndRemovesItsSettings) {
    ASSERT_TRUE(directory);
    directory->deliver("presence.example", "ldap.example");
    EXPECT_EQ(valueOf(L"Directory_Server_Address"), L"ldap.example");
    EXPECT_EQ(valueOf(L"Directory_Server_Type"), L"LDAP");
    EXPECT_TRUE(directory->withdraw());
    EXPECT_EQ(valueOf(L"Directory_Server_Address"), L"");
    EXPECT_FALSE(directory->withdraw());
}

TEST_F(ForeignServiceTest, ObservesOneKeyByObserverAndOneByNotifier) {
    ASSERT_TRUE(directory);
    directory->deliver("presence.example", "ldap.example");
    EXPECT_THAT(directory->getHeard(),
                ElementsAre("Directory_Server_Address=ldap.example", "Presence_Server_Address=presence.example"));
    directory->deliver("presence.example", "ldap2.example");
    EXPECT_EQ(directory->getHeard().back(), "Directory_Server_Address=ldap2.example");
    EXPECT_EQ(directory->getHeard().size(), 3U);
    directory->withdraw();
    EXPECT_EQ(directory->getHeard().size(), 5U);
}

TEST_F(ForeignServiceTest, LeavesACopyOnTheDiskUntilItRemovesItsSettings) {
    ASSERT_TRUE(directory);
    const auto copy = profile.config() / "Cache" / "cachedExampleDirectoryConfigStore.dat";
    directory->deliver("presence.example", "ldap.example");
    EXPECT_TRUE(std::filesystem::exists(copy));
    directory->withdraw();
    EXPECT_FALSE(std::filesystem::exists(copy));
}

TEST_F(ForeignServiceTest, LoadingTheServiceRegistersItsEventDescriptions) {
    for (const auto* tag : {"EN-US", "ZH-TW"}) {
        const auto name = "CONFIGSERVICEEVENTDESCRIPTIONS_" + std::string(tag) + ".XML";
        EXPECT_TRUE(zel::Resources::find("EVENTXML", name)) << name;
    }
}
