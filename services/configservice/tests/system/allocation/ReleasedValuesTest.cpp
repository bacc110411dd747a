#include "Allocations.h"
#include "featuresets/adapters/config/chain/ConfigChangeObservers.h"
#include "services/impl/ServiceFixture.h"
#include "table/ConfigTable.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace ZelUnified {
namespace {

using configservice_test::FreedText;

// Too long for the small string buffer on every platform.
const std::wstring secret(40, L's');
const std::wstring longer(200, L'l');
const std::wstring zeroes(40, L'\0');

TEST(ReleasedValues, TheTestFindsAValueInAFreedBlock) {
    std::optional<std::wstring> text(secret);
    const FreedText freed(*text);
    EXPECT_EQ(freed.getContent(), std::nullopt);
    text.reset();
    EXPECT_EQ(freed.getContent(), secret);
}

TEST(ReleasedValues, ATableZeroesTheValuesItReleases) {
    using Table = std::unique_ptr<ConfigTable>;
    const std::vector<std::pair<std::string, std::function<void(Table&)>>> waysOut = {
        {"overwritten", [](Table& table) { table->store(L"K", longer); }},
        {"removed", [](Table& table) { table->remove(L"K"); }},
        {"cleared", [](Table& table) { table->clear(); }},
        {"replaced",
         [](Table& table) {
             table->replace({{L"k", longer}});
         }},
        {"gone with the table", [](Table& table) { table.reset(); }},
    };
    for (const auto& [name, goesOut] : waysOut) {
        for (const bool isLoaded : {false, true}) {
            SCOPED_TRACE(name + (isLoaded ? ", of a document" : ", stored"));
            auto table = std::make_unique<ConfigTable>(ConfigMap{{L"a", L"1"}});
            const std::wstring key = L"k";
            isLoaded ? static_cast<void>(table->load(FoldedKey(key), secret))
                     : static_cast<void>(table->store(key, secret));
            const FreedText freed(*table->find(FoldedKey(key)));
            goesOut(table);
            table.reset(); // the memory may be freed only with the table
            EXPECT_EQ(freed.getContent(), zeroes);
        }
    }
}

TEST(ReleasedValues, ReplaceZeroesTheCallersValues) {
    ConfigMap values{{L"k", secret}};
    const FreedText freed(values.at(L"k"));
    ConfigTable table;
    table.replace(std::move(values));
    EXPECT_EQ(freed.getContent(), zeroes);
}

TEST(ReleasedValues, AShorterValueZeroesTheRestOfItsBlock) {
    ConfigTable table(ConfigMap{{L"k", secret}});
    const std::wstring key = L"k";
    const std::wstring_view room = *table.find(FoldedKey(key));
    table.store(key, secret.substr(0, 3));
    EXPECT_EQ(room, secret.substr(0, 3) + zeroes.substr(3));
    table.store(key, longer);
    EXPECT_EQ(room, zeroes);
}

TEST(ReleasedValues, ALongerValueZeroesTheFormerBlock) {
    ConfigTable table(ConfigMap{{L"k", L"short"}});
    const std::wstring key = L"k";
    table.store(key, secret);
    const FreedText freed(*table.find(FoldedKey(key)));
    table.store(key, longer);
    EXPECT_EQ(freed.getContent(), zeroes);
}

TEST(ReleasedValues, AnAnnouncementZeroesItsValues) {
    for (const bool isOriginal : {false, true}) {
        auto change = std::make_unique<ConfigChange>();
        auto& text = isOriginal ? change->originalValue : change->value;
        text = secret;
        const FreedText freed(text);
        change.reset();
        EXPECT_EQ(freed.getContent(), zeroes);
    }
}

struct ReleasedValuesOfRecords : configservice_test::ServiceFixture {
    /// The record takes over the block of the text, so the block of these arguments is freed later.
    void announceWhole(std::wstring value, std::wstring original) {
        service->OnConfigChanged(L"k", std::move(value), std::move(original), false, true, L"s", L"s", false);
    }
};

TEST_F(ReleasedValuesOfRecords, AreZeroedWhenTheyAreOverwritten) {
    std::wstring value = secret;
    const FreedText freed(value);
    announceWhole(std::move(value), L"");
    ASSERT_EQ(freed.getContent(), std::nullopt) << "the record still holds the value";
    announceWhole(longer, L"");
    EXPECT_EQ(freed.getContent(), zeroes);
}

TEST_F(ReleasedValuesOfRecords, AreZeroedWhenAnOriginalValueIsOverwritten) {
    std::wstring original = secret;
    const FreedText freed(original);
    announceWhole(L"", std::move(original));
    ASSERT_EQ(freed.getContent(), std::nullopt) << "the record still holds the value";
    announceWhole(L"", longer);
    EXPECT_EQ(freed.getContent(), zeroes);
}

TEST_F(ReleasedValuesOfRecords, AreZeroedWhenAnEqualValueIsDiscarded) {
    announceWhole(secret, secret);
    {
        std::wstring value(40, L'S');
        const FreedText freed(value);
        announceWhole(std::move(value), secret);
        EXPECT_EQ(freed.getContent(), zeroes);
    }
    std::wstring original(40, L'S');
    const FreedText freed(original);
    announceWhole(secret, std::move(original));
    EXPECT_EQ(freed.getContent(), zeroes);
}

TEST_F(ReleasedValuesOfRecords, AreZeroedWhenTheRecordIsDestroyed) {
    for (const bool isOriginal : {false, true}) {
        std::wstring text = secret;
        const FreedText freed(text);
        if (isOriginal) {
            announceWhole(L"", std::move(text));
        } else {
            announceWhole(std::move(text), L"");
        }
        service->reset();
        EXPECT_EQ(freed.getContent(), zeroes);
    }
}

} // namespace
} // namespace ZelUnified
