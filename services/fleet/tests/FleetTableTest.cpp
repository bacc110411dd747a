#include "FleetTable.h"

#include "SettingsMailbox.h"

#include <gtest/gtest.h>

namespace fleet_test {
namespace {

using fleet::FleetScope;
using ZelUnified::ConfigMap;

class FleetTable : public testing::Test {
protected:
    void put(const std::string& key, const std::string& value) { table.apply({key, value, false}); }
    void remove(const std::string& key) { table.apply({key, "", true}); }

    fleet::FleetTable table{
        {FleetScope::ofAll(), FleetScope::ofGroup("second"), FleetScope::ofGroup("first"), FleetScope::ofUser("ada")}};
};

TEST_F(FleetTable, MostSpecificScopeWins) {
    put("/lumora/fleet/users/ada/A", "user");
    put("/lumora/fleet/groups/first/A", "first");
    put("/lumora/fleet/groups/second/A", "second");
    put("/lumora/fleet/all/a", "all");
    put("/lumora/fleet/groups/other/A", "other");
    EXPECT_EQ(table.merge(), (ConfigMap{{L"a", L"user"}}));
    remove("/lumora/fleet/users/ada/A");
    EXPECT_EQ(table.merge(), (ConfigMap{{L"a", L"first"}}));
    remove("/lumora/fleet/groups/first/A");
    EXPECT_EQ(table.merge(), (ConfigMap{{L"a", L"second"}}));
    table.clear();
    EXPECT_TRUE(table.merge().empty());
}

TEST_F(FleetTable, ValueThatIsSkippedRemovesTheOneBefore) {
    put("/lumora/fleet/all/A", "1");
    put("/lumora/fleet/all/A", "\xFF");
    EXPECT_TRUE(table.merge().empty());
}

TEST_F(FleetTable, SkipsKeysThatAreNotXmlNames) {
    for (const auto* key : {"a\u00D7b", "a\u00F7", "a\u2028b", "1a", "a b", "a:b", ""}) {
        put(std::string("/lumora/fleet/all/") + key, "1");
    }
    EXPECT_TRUE(table.merge().empty());
    put("/lumora/fleet/all/Gr\u00F6\u00DFe", "1");
    EXPECT_EQ(table.merge().size(), 1U);
}

TEST_F(FleetTable, SkipsKeysThatNoClusterMayChange) {
    for (const auto* key : {"FleetEndpoints", "fleetclientkey", "FleetConnectionPassword",
                            "CertificateValidationEnabled", "primaryconfigstores"}) {
        put(std::string("/lumora/fleet/all/") + key, "1");
    }
    EXPECT_TRUE(table.merge().empty());
}

TEST_F(FleetTable, RemovesBlanksAroundAValue) {
    put("/lumora/fleet/all/A", " \tone two \r\n");
    put("/lumora/fleet/all/B", "  ");
    EXPECT_EQ(table.merge(), (ConfigMap{{L"A", L"one two"}, {L"B", L""}}));
}

TEST_F(FleetTable, LongKeysAndValuesAreSkipped) {
    put("/lumora/fleet/all/" + std::string(fleet::FleetTable::maxKeyBytes + 1, 'k'), "1");
    put("/lumora/fleet/all/A", std::string(fleet::FleetTable::maxValueBytes + 1, 'v'));
    EXPECT_TRUE(table.merge().empty());
    put("/lumora/fleet/all/" + std::string(fleet::FleetTable::maxKeyBytes, 'k'), "1");
    put("/lumora/fleet/all/A", std::string(fleet::FleetTable::maxValueBytes, 'v'));
    EXPECT_EQ(table.merge().size(), 2U);
}

TEST_F(FleetTable, IsOverfullBeyondTenThousandKeys) {
    const auto fill = [&](std::size_t count) {
        for (std::size_t number = 0; number < count; ++number) {
            put("/lumora/fleet/all/K" + std::to_string(number), "1");
        }
    };
    fill(fleet::FleetTable::maxKeys);
    EXPECT_FALSE(table.isOverfull());
    fill(fleet::FleetTable::maxKeys);
    EXPECT_FALSE(table.isOverfull()) << "an overwritten key counts once";
    put("/lumora/fleet/users/ada/K1", "1");
    EXPECT_TRUE(table.isOverfull());
    table.clear();
    EXPECT_FALSE(table.isOverfull());
}

TEST_F(FleetTable, IsOverfullBeyondSixteenMebibytes) {
    const std::string value(std::size_t{1} << 20U, 'v');
    for (int number = 0; number < 15; ++number) {
        put("/lumora/fleet/all/K" + std::to_string(number), value);
    }
    EXPECT_FALSE(table.isOverfull());
    put("/lumora/fleet/all/L", value);
    EXPECT_TRUE(table.isOverfull()) << "the keys count too";
    remove("/lumora/fleet/all/L");
    EXPECT_TRUE(table.isOverfull());
    table.clear();
    EXPECT_FALSE(table.isOverfull());
}

TEST_F(FleetTable, StaysOverfullAfterDeletionsBecauseItLacksSkippedPairs) {
    for (std::size_t number = 0; number <= fleet::FleetTable::maxKeys; ++number) {
        put("/lumora/fleet/all/K" + std::to_string(number), "1");
    }
    put("/lumora/fleet/all/Skipped", "1");
    remove("/lumora/fleet/all/K1");
    remove("/lumora/fleet/all/K2");
    EXPECT_FALSE(table.merge().contains(L"Skipped"));
    EXPECT_TRUE(table.isOverfull());
}

TEST(FleetMailbox, SettingsThatArriveBeforeTheTaskRunsAreOneUpdate) {
    fleet::SettingsMailbox mailbox;
    EXPECT_TRUE(mailbox.put({{L"A", L"1"}}));
    EXPECT_FALSE(mailbox.put({{L"A", L"2"}})) << "the task is posted already";
    EXPECT_EQ(mailbox.extract(), (ConfigMap{{L"A", L"2"}}));
    EXPECT_EQ(mailbox.extract(), std::nullopt);
    EXPECT_TRUE(mailbox.put({{L"A", L"3"}}));
}

} // namespace
} // namespace fleet_test
