#include "TestHost.h"

#include <zel/EncryptFileUtils.h>

#include <ConfigKeys.h>
#include <ConfigStore.h>
#include <FaultInjectingFileLayer.h>
#include <gmock/gmock.h>

#include <cerrno>

namespace inspection_test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;
using Operation = testing_host::FaultInjectingFileLayer::Operation;

/// A document of another service, of which the client keeps a copy.
class Document final : public ZelUnified::ConfigStore {
public:
    Document(std::string storeName, bool isCached) : name(std::move(storeName)), cached(isCached) {}

    bool getValue(const std::wstring& key, std::wstring& value) override {
        value = key == L"FromServer" ? L"x" : L"";
        return !value.empty();
    }
    bool storeValue(const std::wstring& /*key*/, const std::wstring& /*value*/) override { return false; }
    std::vector<std::wstring> getKeys() override { return {L"FromServer"}; }
    bool removeValue(const std::wstring& /*key*/) override { return false; }
    void removeAllValues() override {}
    bool isReadOnly() override { return true; }
    std::string getName() override { return name; }
    int getPriority() override { return 40; }
    void persistValues() override {}
    void destroy() override {}
    bool isLocal() override { return false; }
    bool waitForStoreReady() override { return true; }
    bool shouldCacheConfigStore() override { return cached; }

private:
    const std::string name;
    const bool cached;
};

struct InspectionChanges : testing::Test {
    TestHost host{{}, {{L"Theme", L"system"}}};
    Peer peer{host};

    void addDocument(const std::string& name, bool cached = true) const {
        host.onServices([&] { host.featureSet().addConfigStore(std::make_shared<Document>(name, cached)); });
    }
    std::filesystem::path copyOf(const std::string& name) const {
        return host.getProfile().config() / "Cache" / ("cached" + name + ".dat");
    }
    std::string record() { return peer.ask({{"verb", "get"}, {"key", "PrimaryConfigStores"}}).value("value", "none"); }
    Json remove(const std::string& store) { return peer.ask({{"verb", "remove-store"}, {"store", store}}); }
};

/// The client's disk has faults.
struct InspectionFaults : InspectionChanges {
    InspectionFaults() { zel::storage::EncryptFileUtils::overrideFileLayer(files); }
    ~InspectionFaults() override { zel::storage::EncryptFileUtils::overrideFileLayer(nullptr); }
    InspectionFaults(const InspectionFaults&) = delete;
    InspectionFaults& operator=(const InspectionFaults&) = delete;

    void fillDisk() const { files->setFreeSpace(0); }

    const std::shared_ptr<testing_host::FaultInjectingFileLayer> files =
        std::make_shared<testing_host::FaultInjectingFileLayer>();
};

TEST_F(InspectionFaults, AChangeThatIsNotOnTheDiskFailsWithTheReason) {
    fillDisk();
    auto reply = peer.ask({{"verb", "set"}, {"key", "Theme"}, {"value", "dark"}});
    EXPECT_EQ(reply["exitCode"], 3);
    EXPECT_THAT(
        reply["message"].get<std::string>(),
        AllOf(HasSubstr("Theme is set for this run only, because it is not on the disk: lumoraLocalConfig.dat: "),
              HasSubstr("the client tries again until it ends")));
    EXPECT_EQ(peer.ask({{"verb", "get"}, {"key", "Theme"}})["value"], "dark");
    EXPECT_EQ(peer.ask({{"verb", "reset"}, {"key", "Theme"}})["exitCode"], 3);
    EXPECT_EQ(peer.ask({{"verb", "provision"}, {"url", "lumora://provision?ServicesDomain=example.org"}})["exitCode"],
              3);
    files->heal();
    EXPECT_EQ(peer.ask({{"verb", "set"}, {"key", "Theme"}, {"value", "light"}})["type"], "done");
}

TEST_F(InspectionFaults, ASecondSetOfTheSameValueFailsUntilItIsOnTheDisk) {
    const Json request{{"verb", "set"}, {"key", "Theme"}, {"value", "dark"}};
    fillDisk();
    EXPECT_EQ(peer.ask(request)["exitCode"], 3);
    EXPECT_EQ(peer.ask(request)["exitCode"], 3);
    files->heal();
    zel::storage::EncryptFileUtils::retryPendingWrites();
    EXPECT_EQ(peer.ask(request)["type"], "done");
}

TEST_F(InspectionFaults, HealthReportsPendingWrites) {
    fillDisk();
    peer.ask({{"verb", "set"}, {"key", "Theme"}, {"value", "dark"}});
    auto reply = peer.ask({{"verb", "health"}});
    EXPECT_EQ(reply["attention"], true);
    std::string writes;
    for (auto& item : reply["items"]) {
        writes += item.value("writes", "");
    }
    EXPECT_THAT(writes, AllOf(HasSubstr("the last write failed"), HasSubstr("a change waits to be written")));
}

TEST(InspectionSdkMode, ASetFailsBecauseTheUsersSettingsAreNotStored) {
    TestHost host({}, {{L"Lumora_SDK_Mode", L"true"}});
    Peer peer(host);
    auto reply = peer.ask({{"verb", "set"}, {"key", "Theme"}, {"value", "dark"}});
    EXPECT_EQ(reply["exitCode"], 3);
    EXPECT_THAT(reply["message"].get<std::string>(),
                AllOf(HasSubstr("is set for this run only"), HasSubstr("Lumora_SDK_Mode is true")));
    EXPECT_EQ(peer.ask({{"verb", "get"}, {"key", "Theme"}})["value"], "dark");
}

TEST_F(InspectionChanges, ASetOfTheSameValueSucceeds) {
    const Json request{{"verb", "set"}, {"key", "Theme"}, {"value", "dark"}};
    EXPECT_EQ(peer.ask(request)["type"], "done");
    EXPECT_EQ(peer.ask(request)["type"], "done");
}

TEST_F(InspectionChanges, ASetThatTheClientDoesNotWriteFailsEvenAfterASuccessfulWrite) {
    ASSERT_EQ(peer.ask({{"verb", "set"}, {"key", "Theme"}, {"value", "dark"}})["type"], "done");
    // The client does not overwrite a readable file while the other one is unreadable.
    testing_host::writeFile(host.getProfile().config() / "lumoraLocalConfig_backup.dat", "damaged");
    auto reply = peer.ask({{"verb", "set"}, {"key", "Theme"}, {"value", "light"}});
    EXPECT_EQ(reply["exitCode"], 3);
    EXPECT_THAT(reply["message"].get<std::string>(), HasSubstr("is not written while its backup is damaged"));
}

TEST_F(InspectionChanges, ASetInMemoryLastsUntilTheClientEndsAndIsNotOnTheDisk) {
    EXPECT_EQ(peer.ask({{"verb", "memory"}, {"key", "Fresh"}, {"value", "1"}})["message"],
              "Fresh set for this run; in force: \"1\" from InMemoryConfigStore");
    EXPECT_FALSE(std::filesystem::exists(host.getProfile().config() / "lumoraLocalConfig.dat"));
}

TEST_F(InspectionChanges, ASetInMemoryOfAnUnsuitableKeyOrValueIsRefusedUnlessItIsForced) {
    Json request{{"verb", "memory"}, {"key", "AllowUrlProvisioning"}, {"value", "perhaps"}};
    auto refused = peer.ask(request);
    EXPECT_EQ(refused["exitCode"], 1);
    EXPECT_THAT(refused["message"].get<std::string>(), HasSubstr("--force sets it anyway"));
    EXPECT_EQ(peer.ask({{"verb", "memory"}, {"key", "1x"}, {"value", "1"}})["exitCode"], 1);
    request["force"] = true;
    EXPECT_EQ(peer.ask(request)["type"], "done");
}

TEST_F(InspectionChanges, ALoadOfTheSameValuesSucceeds) {
    const Json request{{"verb", "load"}, {"values", {{{"key", "Theme"}, {"value", "dark"}}}}};
    EXPECT_EQ(peer.ask(request)["added"], 1);
    EXPECT_EQ(peer.ask(request)["unchanged"], 1);
}

TEST_F(InspectionFaults, ALoadThatIsNotOnTheDiskFailsWithTheReason) {
    fillDisk();
    auto reply = peer.ask({{"verb", "load"}, {"values", {{{"key", "Theme"}, {"value", "dark"}}}}});
    EXPECT_EQ(reply["exitCode"], 3);
    EXPECT_THAT(reply["message"].get<std::string>(),
                HasSubstr("the values are set for this run only, because they are not on the disk"));
}

TEST_F(InspectionChanges, ADocumentOfDeviceManagementIsReportedToWatchers) {
    Peer watcher(host);
    ASSERT_EQ(watcher.ask({{"verb", "watch"}, {"keys", {"Managed"}}})["type"], "done");
    auto reply = peer.ask({{"verb", "mdm"}, {"document", "<Config><Group><Managed>1</Managed></Group></Config>"}});
    EXPECT_EQ(reply["message"], "MdmConfigStore holds 1 keys for this run");
    auto event = watcher.receive();
    EXPECT_EQ(event["new"], "1");
    EXPECT_EQ(event["store"], "MdmConfigStore");
}

TEST_F(InspectionChanges, ADocumentOfAnotherServiceIsReportedToWatchers) {
    ASSERT_EQ(peer.ask({{"verb", "watch"}, {"keys", {"FromServer"}}})["type"], "done");
    addDocument("Foreign");
    auto event = peer.receive();
    EXPECT_EQ(event["new"], "x");
    EXPECT_EQ(event["store"], "Foreign");
}

TEST_F(InspectionChanges, RemovingAStoreThatDoesNotExistChangesNothing) {
    addDocument("TFTPConfigStore");
    addDocument("Tftp");
    const auto before = record();
    ASSERT_THAT(before, AllOf(HasSubstr("TFTPConfigStore:"), HasSubstr("Tftp:")));
    for (const auto* name : {"TFT", "FTP", "TFTPConfigStore:41", "config", ""}) {
        auto reply = remove(name);
        EXPECT_EQ(reply["exitCode"], 1) << name;
        EXPECT_EQ(reply["message"], "there is no store '" + std::string(name) + "'");
    }
    EXPECT_EQ(record(), before);
    EXPECT_TRUE(std::filesystem::exists(copyOf("Tftp")));
}

TEST_F(InspectionChanges, RemovingAStoreLeavesTheRecordsOfTheOthers) {
    addDocument("MyTFTP"); // its entry contains the removed name, too
    addDocument("TFTPConfigStore");
    addDocument("Tftp");
    const auto before = record();
    auto reply = remove("TFTP");
    EXPECT_EQ(reply["message"], "Tftp removed; its copy on the disk is deleted");
    EXPECT_FALSE(std::filesystem::exists(copyOf("Tftp")));
    EXPECT_TRUE(std::filesystem::exists(copyOf("TFTPConfigStore")));
    EXPECT_THAT(record(), AllOf(HasSubstr("MyTFTP:"), HasSubstr("TFTPConfigStore:"), Not(HasSubstr("Tftp:"))));
    EXPECT_LT(record().size(), before.size());
}

TEST_F(InspectionChanges, RemovingAStoreReportsWhetherItHadACopyOrIsCreatedAgain) {
    addDocument("Plain", false);
    EXPECT_EQ(remove("Plain")["message"], "Plain removed; it has no copy on the disk");
    EXPECT_THAT(remove("RegistryConfigStore")["message"].get<std::string>(),
                HasSubstr("removed for this run; the next start creates it again"));
}

} // namespace
} // namespace inspection_test
