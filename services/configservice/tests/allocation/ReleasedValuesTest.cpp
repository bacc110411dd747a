#include "Allocations.h"
#include "lookup/ConfigTable.h"
#include "services/impl/ServiceFixture.h"

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

// Long enough for the heap on every platform.
const std::wstring secret(40, L's');
const std::wstring longer(200, L'l');
const std::wstring zeroes(40, L'\0');

TEST(ReleasedValues, AreSeenWhenTheyAreFreed) {
    std::optional<std::wstring> text(secret);
    const FreedText freed(*text);
    EXPECT_EQ(freed.getContent(), std::nullopt);
    text.reset();
    EXPECT_EQ(freed.getContent(), secret);
}

TEST(ReleasedValues, OfATableAreZeroed) {
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
        SCOPED_TRACE(name);
        auto table = std::make_unique<ConfigTable>();
        table->store(L"a", L"1");
        table->store(L"k", secret);
        const std::wstring key = L"k";
        const FreedText freed(*table->find(FoldedKey(key)));
        goesOut(table);
        EXPECT_EQ(freed.getContent(), zeroes);
    }
}

struct ReleasedValuesOfRecords : configservice_test::ServiceFixture {
    /// The record takes the text's block over: what is freed later is what is handed in here.
    void announceWhole(std::wstring value, std::wstring original) {
        service->OnConfigChanged(L"k", std::move(value), std::move(original), false, true, L"s", L"s", false);
    }
};

TEST_F(ReleasedValuesOfRecords, AreZeroedWhenOthersTakeTheirPlace) {
    std::wstring value = secret;
    const FreedText freed(value);
    announceWhole(std::move(value), L"");
    ASSERT_EQ(freed.getContent(), std::nullopt) << "the record holds it";
    announceWhole(longer, L"");
    EXPECT_EQ(freed.getContent(), zeroes);
}

TEST_F(ReleasedValuesOfRecords, AreZeroedAsOriginalsToo) {
    std::wstring original = secret;
    const FreedText freed(original);
    announceWhole(L"", std::move(original));
    ASSERT_EQ(freed.getContent(), std::nullopt) << "the record holds it";
    announceWhole(L"", longer);
    EXPECT_EQ(freed.getContent(), zeroes);
}

TEST_F(ReleasedValuesOfRecords, AreZeroedWhenTheyWereEqualAndNotTakenOver) {
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

TEST_F(ReleasedValuesOfRecords, AreZeroedWhenTheRecordGoes) {
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
