#include "ConfigStoreManagerFixture.h"

#include <zel/FipsUtils.h>

#include <InMemoryConfigStore.h>
#include <XmlConfigStore.h>

#include <array>
#include <optional>

namespace ZelUnified {
namespace {

/// The contents of one store for a key.
struct Source {
    bool readOnly;
    std::optional<std::wstring> value;
};

using Sources = std::array<Source, 3>;

std::vector<Source> allSources() {
    std::vector<Source> sources;
    for (const bool readOnly : {false, true}) {
        sources.push_back({readOnly, std::nullopt});
        sources.push_back({readOnly, L""});
        sources.push_back({readOnly, L"value"});
    }
    return sources;
}

std::shared_ptr<ConfigStore> makeStore(int priority, const Source& source, const std::wstring& key) {
    const auto name = "Store" + std::to_string(priority);
    std::shared_ptr<ConfigStore> store;
    if (source.readOnly) {
        store = std::make_shared<XmlConfigStore>(name, priority, true, false, "", false);
    } else {
        store = std::make_shared<InMemoryConfigStore>(name, priority);
    }
    if (source.value) {
        store->storeValue(key, source.value->empty() ? L"" : *source.value + std::to_wstring(priority));
    }
    return store;
}

/// Returns the announcements of the key while such stores arrive, the last one first. With `endsInForeignStore` the
/// chain ends in an empty store of another service.
std::vector<std::string> announced(const Sources& sources, const std::wstring& key, bool endsInForeignStore) {
    const auto factory = std::make_shared<testing_host::RecordingFactory>();
    ConfigStoreManager manager(factory);
    if (endsInForeignStore) {
        manager.addStore(makeReadOnlyStore("Foreign", 100));
    }
    RecordingObserver observer;
    manager.addObserver(&observer);
    for (std::size_t i = sources.size(); i-- > 0;) {
        manager.addStore(makeStore(static_cast<int>(i), sources[i], key));
    }
    factory->backgroundDispatcher->clear();
    return observer.announcements;
}

class ConfigStoreManagerReading : public testing::Test {
protected:
    ~ConfigStoreManagerReading() override { zel::common::FipsUtils::overrideFipsMode(std::nullopt); }

    static void expectNoDifferenceWithAForeignStore(const std::wstring& key) {
        const auto sources = allSources();
        for (const auto& first : sources) {
            for (const auto& second : sources) {
                for (const auto& third : sources) {
                    const Sources chain{first, second, third};
                    ASSERT_EQ(announced(chain, key, false), announced(chain, key, true));
                }
            }
        }
    }
};

TEST_F(ConfigStoreManagerReading, AnnouncesTheSameWithAndWithoutAForeignStore) {
    expectNoDifferenceWithAForeignStore(L"key");
}

TEST_F(ConfigStoreManagerReading, AnnouncesARenamedKeyTheSameWithAndWithoutAForeignStore) {
    expectNoDifferenceWithAForeignStore(L"TFTPPrimaryServer");
    expectNoDifferenceWithAForeignStore(L"TftpServer1");
}

TEST_F(ConfigStoreManagerReading, AnnouncesTheFipsKeyTheSameWithAndWithoutAForeignStore) {
    zel::common::FipsUtils::overrideFipsMode(true);
    expectNoDifferenceWithAForeignStore(L"Telephony_P2P_Enabled");
}

TEST_F(ConfigStoreManagerReading, LogsTheSameWithAndWithoutAForeignStore) {
    const Sources chain{Source{false, L"john@example.com"}, Source{true, L""}, Source{true, std::nullopt}};
    const auto logged = [&chain](bool endsInForeignStore) {
        const testing_host::LogRecorder log(testing_host::LogRecorder::Debug::On);
        announced(chain, L"key", endsInForeignStore);
        std::vector<std::string> lines;
        for (const auto& record : log.getRecords()) {
            if (record.level == ZelLogLevel::Debug) {
                lines.push_back(record.function + ": " + record.text);
            }
        }
        return lines;
    };
    EXPECT_THAT(logged(false),
                testing::ElementsAre("ZelUnified::ConfigStoreManager::getValue: key : [key] skipLocal : [0]  value: [] "
                                     "success: [true] configStoreName: [Store1]",
                                     "ZelUnified::ConfigStoreManager::getValue: key : [key] skipLocal : [0]  value: "
                                     "[<user>@example.com0] success: [true] configStoreName: [Store0]"));
    EXPECT_EQ(logged(false), logged(true));
}

TEST_F(ConfigStoreManagerReading, CallsAStoreOfAnotherServiceForEachReading) {
    const auto factory = std::make_shared<testing_host::RecordingFactory>();
    ConfigStoreManager manager(factory);
    const auto foreign = makeReadOnlyStore("Foreign", 100, {{L"k", L"v"}});
    int readings = 0;
    foreign->beforeReading = [&readings] { ++readings; };
    manager.addStore(foreign);
    EXPECT_EQ(readings, 2);
    factory->backgroundDispatcher->clear();
}

} // namespace
} // namespace ZelUnified
