#include "ConfigStoreManagerFixture.h"

#include <zel/FipsUtils.h>

#include <BootstrapConfigStore.h>
#include <ConfigKeys.h>
#include <InMemoryConfigStore.h>
#include <MdmConfigRetriever.h>
#include <MdmConfigStore.h>
#include <TemporaryProfile.h>
#include <XmlConfigStore.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace ZelUnified {
namespace {

/// A store of another service with the behaviour of the library's, so that the manager reads it through ConfigStore.
class ForeignStore final : public ConfigStore {
public:
    explicit ForeignStore(std::shared_ptr<ConfigStore> library) : store(std::move(library)) {}

    bool getValue(const std::wstring& key, std::wstring& value) override { return store->getValue(key, value); }
    bool storeValue(const std::wstring& key, const std::wstring& value) override {
        return store->storeValue(key, value);
    }
    std::vector<std::wstring> getKeys() override { return store->getKeys(); }
    bool removeValue(const std::wstring& key) override { return store->removeValue(key); }
    void removeAllValues() override { store->removeAllValues(); }
    bool isReadOnly() override { return store->isReadOnly(); }
    std::string getName() override { return store->getName(); }
    int getPriority() override { return store->getPriority(); }
    void persistValues() override { store->persistValues(); }
    void destroy() override { store->destroy(); }
    bool isLocal() override { return store->isLocal(); }
    bool waitForStoreReady() override { return store->waitForStoreReady(); }

private:
    const std::shared_ptr<ConfigStore> store;
};

struct Retriever final : MdmConfigRetriever {
    explicit Retriever(ConfigMap retrieved) : values(std::move(retrieved)) {}
    ConfigMap retrieveMdmConfig() override { return values; }
    ConfigMap values;
};

/// Random keys, stores and steps, the same for the same seed.
class Story {
public:
    Story(unsigned number, bool isForeign) : chance(number), foreign(isForeign) {
        manager.addObserver(&observer);
        manager.setKeySensitive(L"omega");
        observer.reaction = [this](const std::wstring& key) { react(key); };
    }
    ~Story() { factory->backgroundDispatcher->clear(); }

    /// Returns everything that was announced, returned and logged.
    std::vector<std::string> tell() {
        zel::common::FipsUtils::overrideFipsMode(below(3) == 0);
        for (int step = 0; step < 25; ++step) {
            takeStep();
        }
        zel::common::FipsUtils::overrideFipsMode(std::nullopt);
        auto told = observer.take();
        for (const auto& record : log.getRecords()) {
            told.push_back(record.logger + " " + record.function + ": " + record.text);
        }
        return told;
    }

private:
    unsigned below(unsigned limit) { return static_cast<unsigned>(chance() % limit); }

    std::wstring someKey() {
        static const std::vector<std::wstring> keys = {L"alpha",  L"ALPHA",      L"Zed",
                                                       L"omega",  L"CtiServer1", L"CTIPrimaryServer",
                                                       L"\u00c4", L"\u00e4",     L"Telephony_P2P_Enabled",
                                                       L"a b",    L"lll",        L"CertificateValidationEnabled"};
        return keys[below(static_cast<unsigned>(keys.size()))];
    }

    std::wstring someValue() {
        static const std::vector<std::wstring> values = {L"", L"one", L"two", L" ", L" one ", L"sip:a.b@example.com"};
        return values[below(static_cast<unsigned>(values.size()))];
    }

    ConfigMap someValues() {
        ConfigMap values;
        for (unsigned i = below(6); i > 0; --i) {
            values.insert_or_assign(someKey(), someValue());
        }
        return values;
    }

    std::shared_ptr<ConfigStore> makeStore() {
        const std::string name = "Store" + std::to_string(below(4));
        const int priority = static_cast<int>(below(5)) * 10;
        switch (below(5)) {
        case 0:
            return std::make_shared<MdmConfigStore>(std::make_shared<Retriever>(someValues()));
        case 1: {
            const auto path = (profile.config() / "bootstrap.txt").string();
            std::filesystem::create_directories(profile.config());
            std::ofstream file(path);
            for (const auto& [key, value] : someValues()) {
                file << KyrCoreUtils::toString(key) << ": " << KyrCoreUtils::toString(value) << "\n";
            }
            file.close();
            return std::make_shared<BootstrapConfigStore>(name, path, priority);
        }
        case 2:
            return filled(std::make_shared<XmlConfigStore>(name, priority, true, false, "", false));
        default:
            return filled(std::make_shared<InMemoryConfigStore>(name, priority));
        }
    }

    std::shared_ptr<ConfigStore> filled(const std::shared_ptr<ConfigStore>& store) {
        for (const auto& [key, value] : someValues()) {
            store->storeValue(key, value);
        }
        return store;
    }

    void addSomeStore() {
        auto store = makeStore();
        manager.addStore(foreign ? std::make_shared<ForeignStore>(store) : store);
    }

    void takeStep() {
        switch (below(5)) {
        case 0:
            manager.removeStoreWithSameName("Store" + std::to_string(below(4)));
            break;
        case 1: {
            const auto key = someKey();
            manager.storeValue(key, someValue());
            break;
        }
        default:
            addSomeStore();
        }
    }

    /// Sometimes changes the chain during an announcement.
    void react(const std::wstring&) {
        if (depth < 2 && below(12) == 0) {
            ++depth;
            takeStep();
            --depth;
        }
    }

    std::mt19937 chance; // NOLINT(cert-msc32-c,cert-msc51-cpp): the same steps in each run
    const bool foreign;
    int depth = 0;
    testing_host::TemporaryProfile profile;
    testing_host::LogRecorder log{testing_host::LogRecorder::Debug::On};
    RecordingObserver observer;
    const std::shared_ptr<testing_host::RecordingFactory> factory = std::make_shared<testing_host::RecordingFactory>();
    ConfigStoreManager manager{factory};
};

TEST(ConfigStoreManagerForeignStores, CauseTheSameAnnouncementsAndLinesAsStoresOfTheLibrary) {
    std::size_t lines = 0;
    for (unsigned number = 0; number < 100; ++number) {
        const auto expected = Story(number, true).tell();
        const auto told = Story(number, false).tell();
        ASSERT_EQ(told.size(), expected.size()) << number;
        for (std::size_t i = 0; i < told.size(); ++i) {
            ASSERT_EQ(told[i], expected[i]) << number;
        }
        lines += told.size();
    }
    EXPECT_GT(lines, 5000U) << "the steps cause no announcement";
}

} // namespace
} // namespace ZelUnified
