#include "stores/ClosestNames.h"

#include <gmock/gmock.h>

namespace lumora_config {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const std::vector<std::string> commands{"get", "explain", "list", "stores", "set", "reset", "restore", "reset-data"};
const std::vector<std::string> keys{"TFTPPrimaryServer", "TFTPBackupServer1", "TFTPBackupServer2", "ServicesDomain",
                                    "Phone_Mode"};

} // namespace

TEST(ClosestNames, OneEditOfEachKindIsFound) {
    EXPECT_THAT(closestNames("ServicesDomin", keys), ElementsAre("ServicesDomain"));
    EXPECT_THAT(closestNames("ServicessDomain", keys), ElementsAre("ServicesDomain"));
    EXPECT_THAT(closestNames("ServicezDomain", keys), ElementsAre("ServicesDomain"));
}

TEST(ClosestNames, ExchangedNeighboursAreOneEdit) {
    EXPECT_THAT(closestNames("gte", commands), ElementsAre("get"));
}

TEST(ClosestNames, CaseIsIgnored) {
    EXPECT_THAT(closestNames("phonemode", keys), ElementsAre("Phone_Mode"));
    EXPECT_THAT(closestNames("GET", commands), ElementsAre("get"));
}

TEST(ClosestNames, OnlyTheClosestAreReturnedInTheirOrder) {
    EXPECT_THAT(closestNames("TFTPBackupServer", keys), ElementsAre("TFTPBackupServer1", "TFTPBackupServer2"));
    EXPECT_THAT(closestNames("rests", commands), ElementsAre("reset"));
}

TEST(ClosestNames, AtMostThreeAreReturned) {
    EXPECT_THAT(closestNames("Key", {"Key1", "Key2", "Key3", "Key4"}), ElementsAre("Key1", "Key2", "Key3"));
}

TEST(ClosestNames, ANameThatOccursTwiceIsReturnedOnce) {
    EXPECT_THAT(closestNames("gt", {"get", "get"}), ElementsAre("get"));
}

TEST(ClosestNames, AWordUnlikeEveryCandidateHasNone) {
    EXPECT_THAT(closestNames("Theme", keys), IsEmpty());
    EXPECT_THAT(closestNames("foo", commands), IsEmpty());
    EXPECT_THAT(closestNames("ServicesUnrelated", keys), IsEmpty());
}

TEST(ClosestNames, AWordOfManyMegabytesHasNone) {
    EXPECT_THAT(closestNames(std::string(5'000'000, 'a'), keys), IsEmpty());
}

TEST(ClosestNames, AnEmptyWordOrListHasNone) {
    EXPECT_THAT(closestNames("", commands), IsEmpty());
    EXPECT_THAT(closestNames("get", {}), IsEmpty());
}

} // namespace lumora_config
