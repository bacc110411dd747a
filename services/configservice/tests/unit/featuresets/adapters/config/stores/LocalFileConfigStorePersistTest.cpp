#include "LocalFileWritingFixture.h"
#include "featuresets/adapters/config/xml/XmlTestSupport.h"

#include <kyr/StringUtils.h>
#include <zel/ZelLog.h>

#include <LogRecorder.h>
#include <TemporaryProfile.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using xml_test::localDocument;
using xml_test::readProtected;
using xml_test::valueOf;
using ZelUnified::LocalFileConfigStore;

namespace {

constexpr const char* loggerName = "ConfigService-LocalFileConfigStore";
constexpr const char* unchangedLine = "Same content has been saved.";

using Entries = std::vector<std::pair<std::wstring, std::wstring>>;

Entries entriesOf(LocalFileConfigStore& store) {
    Entries entries;
    for (const auto& key : store.getKeys()) {
        entries.emplace_back(key, valueOf(store, key));
    }
    return entries;
}

std::string documentOf(const Entries& entries) {
    std::string lines;
    for (const auto& [key, value] : entries) {
        lines += " <userConfig name=\"" + KyrCoreUtils::toString(key) + "\" value=\"" + KyrCoreUtils::toString(value) +
                 "\"/>\n";
    }
    return localDocument(lines);
}

/// A file preserves the spelling of its keys; a reader converts them to lower case.
Entries inLowerCase(Entries entries) {
    for (auto& [key, value] : entries) {
        KyrCoreUtils::makeLowercase(key);
    }
    return entries;
}

/// Makes random changes to a store, the same for the same seed.
class RandomEditor {
public:
    RandomEditor(LocalFileConfigStore& edited, unsigned seed) : store(edited), random(seed) {}

    void edit(int times) {
        for (; times > 0; --times) {
            editOnce();
        }
    }

    /// Stores more new values than the store records individually.
    void storeOften() {
        for (int i = 0; i < 200; ++i) {
            store.storeValue(L"key" + std::to_wstring(100 + below(60)), newValue());
        }
    }

private:
    void editOnce() {
        const auto keys = store.getKeys();
        const std::wstring held = keys.empty() ? L"none" : pick(keys);
        switch (below(4)) {
        case 0:
            store.storeValue(L"key" + std::to_wstring(100 + below(60)), newValue());
            break;
        case 1:
            store.removeValue(held);
            break;
        case 2:
            store.storeValue(held, newValue());
            break;
        default:
            respell(held);
        }
    }

    unsigned below(unsigned limit) { return static_cast<unsigned>(random() % limit); }

    /// Chooses the two ends as often as all keys between them.
    std::wstring pick(const std::vector<std::wstring>& keys) {
        switch (below(3)) {
        case 0:
            return keys.front();
        case 1:
            return keys.back();
        default:
            return keys[below(static_cast<unsigned>(keys.size()))];
        }
    }

    std::wstring newValue() { return std::wstring(below(40), L'x') + std::to_wstring(below(3)); }

    void respell(const std::wstring& key) {
        const std::wstring value = valueOf(store, key);
        if (!store.removeValue(key)) {
            return;
        }
        std::wstring other = key;
        other[below(3)] ^= L' '; // the other case of one of the letters of "key"
        store.storeValue(other, value);
    }

    LocalFileConfigStore& store;
    std::mt19937 random;
};

class LocalFileConfigStorePersistTest : public xml_test::LocalFileWritingFixture {
protected:
    bool saysUnchanged() {
        log.clear();
        store->persistValues();
        const auto texts = log.getTexts(loggerName);
        EXPECT_LE(texts.size(), 1U);
        return texts == std::vector<std::string>{unchangedLine};
    }
};

} // namespace

TEST_F(LocalFileConfigStorePersistTest, WritesTheFileIfAndOnlyIfAnEntryChanged) {
    constexpr unsigned seeds = 4;
    constexpr int rounds = 40;
    for (unsigned seed = 1; seed <= seeds; ++seed) {
        RandomEditor editor(*store, seed);
        for (int round = 0; round < rounds; ++round) {
            SCOPED_TRACE("seed " + std::to_string(seed) + ", round " + std::to_string(round));
            const auto before = entriesOf(*store);
            if (round % 10 == 9) {
                editor.storeOften();
            } else {
                editor.edit(1 + round % 5);
            }
            const auto entries = entriesOf(*store);
            ASSERT_EQ(saysUnchanged(), entries == before);
            const std::string written = testing_host::readFile(main); // no two writes give the same bytes
            ASSERT_TRUE(saysUnchanged());
            ASSERT_EQ(testing_host::readFile(main), written);
            if (!written.empty()) {
                ASSERT_EQ(readProtected(main), documentOf(entries));
            }
            LocalFileConfigStore reader(userName, 20, false);
            ASSERT_EQ(entriesOf(reader), inLowerCase(entries));
        }
    }
}

TEST_F(LocalFileConfigStorePersistTest, LogsUnchangedContentAtDebugLevelOnly) {
    store->storeValue(L"Key", L"v");
    store->persistValues();
    EXPECT_TRUE(saysUnchanged());
    const testing_host::LogRecorder quiet;
    store->persistValues();
    EXPECT_THAT(quiet.getRecords(), IsEmpty());
}

TEST_F(LocalFileConfigStorePersistTest, KeepsAnOldVoicemailKeyOfTheDefaults) {
    constexpr const char* defaultsName = "lumora-config-defaults.xml";
    testing_host::writeFile(profile.resources() / defaultsName,
                            "<r><userConfig name='VVM_Mailstore_Server_0' value='old'/></r>");
    LocalFileConfigStore defaults(defaultsName, 7, profile.resources().string(), defaultsName, true, true, false);
    ASSERT_THAT(entriesOf(defaults), ElementsAre(Pair(L"vvm_mailstore_server_0", L"old")));
    EXPECT_TRUE(defaults.storeValue(L"VVM_Mailstore_Server_0", L"new"));
    EXPECT_THAT(entriesOf(defaults),
                ElementsAre(Pair(L"VoicemailPrimaryServer", L"new"), Pair(L"vvm_mailstore_server_0", L"old")));
    EXPECT_TRUE(defaults.removeValue(L"VVM_MAILSTORE_SERVER_0"));
    EXPECT_THAT(entriesOf(defaults), ElementsAre(Pair(L"VoicemailPrimaryServer", L"new")));
}
