#include "unified/PluginLoader.h"

#include "plugins/PluginFeatureSet.h"

#include <unified/UnifiedFactoryImpl.h>

#include <LogRecorder.h>
#include <RecordingFactory.h>

#include <filesystem>
#include <map>
#include <memory>
#include <string>

using host_tests::PluginFeatureSet;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing_host::LogRecorder;
using testing_host::RecordingFactory;
using ZelUnified::PluginLoader;
using ZelUnified::UnifiedFactoryImpl;
using ZelUnified::UnifiedFactoryOptions;

namespace {

constexpr auto folder = HOST_TEST_PLUGIN_FOLDER;
const std::string interfaceName = "host_tests::PluginFeatureSet";

std::vector<std::string> errorsOfLoading(const std::string& pluginFolder, const std::string& library) {
    const LogRecorder log;
    PluginLoader loader(pluginFolder, {{interfaceName, library}});
    loader.load(interfaceName, std::make_shared<RecordingFactory>());
    return log.getTexts(ZelLogLevel::Error);
}

} // namespace

TEST(PluginLoader, CallsTheEntryOfTheLibraryThatProvidesTheInterface) {
    const auto factory = std::make_shared<RecordingFactory>();
    PluginLoader loader(folder, {{interfaceName, "good_plugin.so"}});
    loader.load(interfaceName, factory);
    const auto featureSet = factory->getFeatureSetByType<PluginFeatureSet>();
    ASSERT_NE(featureSet, nullptr);
    EXPECT_EQ(featureSet->getEntryCalls(), 1);
    factory->Destroy();
}

TEST(PluginLoader, CallsTheEntryOnceForTwoInterfacesOfOneLibrary) {
    const auto factory = std::make_shared<RecordingFactory>();
    PluginLoader loader(folder, {{interfaceName, "good_plugin.so"}, {"another::Interface", "good_plugin.so"}});
    loader.load(interfaceName, factory);
    loader.load("another::Interface", factory);
    loader.load(interfaceName, factory);
    EXPECT_EQ(factory->getFeatureSetByType<PluginFeatureSet>()->getEntryCalls(), 1);
    factory->Destroy();
}

TEST(PluginLoader, DoesNothingForAnInterfaceThatNoLibraryProvides) {
    const LogRecorder log;
    PluginLoader loader(folder, {{interfaceName, "good_plugin.so"}});
    loader.load("another::Interface", std::make_shared<RecordingFactory>());
    EXPECT_THAT(log.getRecords(), IsEmpty());
}

TEST(PluginLoader, LoadsALibraryByItsAbsolutePathAndReturnsWhetherItIsLoaded) {
    const auto factory = std::make_shared<RecordingFactory>();
    const auto path = std::string(folder) + "/good_plugin.so";
    PluginLoader loader("", {}, {{interfaceName, path}, {"another::Interface", path}, {"a::Broken", path + ".absent"}});
    EXPECT_TRUE(loader.load(interfaceName, factory));
    EXPECT_TRUE(loader.load("another::Interface", factory));
    EXPECT_FALSE(loader.load("a::Broken", factory));
    EXPECT_FALSE(loader.load("a::Broken", factory));
    EXPECT_FALSE(loader.load("an::Unknown", factory));
    EXPECT_EQ(factory->getFeatureSetByType<PluginFeatureSet>()->getEntryCalls(), 1);
    factory->Destroy();
}

TEST(PluginLoader, RefusesARelativePath) {
    const LogRecorder log;
    PluginLoader loader(folder, {}, {{interfaceName, "good_plugin.so"}});
    EXPECT_FALSE(loader.load(interfaceName, std::make_shared<RecordingFactory>()));
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error), ElementsAre(HasSubstr("Not an absolute path")));
}

TEST(PluginLoader, ReportsALibraryThatIsMissing) {
    EXPECT_THAT(errorsOfLoading(folder, "missing.so"), ElementsAre(HasSubstr("missing.so")));
}

TEST(PluginLoader, ReportsALibraryWithoutTheEntry) {
    EXPECT_THAT(errorsOfLoading(folder, "entryless_plugin.so"), ElementsAre(HasSubstr("InjectConfigService")));
}

TEST(PluginLoader, ReportsAnEntryThatThrows) {
    EXPECT_THAT(errorsOfLoading(folder, "throwing_plugin.so"), ElementsAre(HasSubstr("broken entry")));
}

TEST(PluginLoader, RefusesANameThatLeadsOutOfTheFolder) {
    const auto parent = std::filesystem::path(folder).filename().string();
    for (const std::string& library :
         {std::string(folder) + "/good_plugin.so", std::string("../") + parent + "/good_plugin.so",
          std::string("./good_plugin.so"), std::string(".."), std::string(), std::string("good_plugin.so\0x", 16)}) {
        EXPECT_THAT(errorsOfLoading(folder, library), ElementsAre(HasSubstr("Not a file of the plug-in folder")));
    }
    EXPECT_THAT(errorsOfLoading("", "good_plugin.so"), ElementsAre(HasSubstr("Not a file of the plug-in folder")));
}

TEST(PluginLoader, AFactoryLoadsTheLibraryOfAFeatureSetAndSkipsOneThatIsLoading) {
    const LogRecorder log;
    UnifiedFactoryOptions options;
    options.pluginFolder = folder;
    options.plugins = {{interfaceName, "good_plugin.so"}};
    const auto factory = std::make_shared<UnifiedFactoryImpl>(options);
    factory->Init();
    const auto featureSet = factory->getFeatureSetByType<PluginFeatureSet>();
    ASSERT_NE(featureSet, nullptr);
    EXPECT_FALSE(featureSet->wasFoundInsideTheEntry());
    EXPECT_EQ(featureSet->getEntryCalls(), 1);
    EXPECT_EQ(factory->getFeatureSets().getItem(42), featureSet);
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error), IsEmpty());
    factory->Destroy();
}

TEST(PluginLoader, ADestroyedFactoryLoadsNothing) {
    UnifiedFactoryOptions options;
    options.pluginFolder = folder;
    options.plugins = {{interfaceName, "good_plugin.so"}};
    const auto factory = std::make_shared<UnifiedFactoryImpl>(options);
    factory->Init();
    factory->Destroy();
    EXPECT_EQ(factory->getFeatureSetByType<PluginFeatureSet>(), nullptr);
}
