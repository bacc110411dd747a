#include "featuresets/adapters/config/cache/CachedStoreRecord.h"

#include <LogRecorder.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ZelUnified {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

TEST(CachedStoreRecord, ReadsNamesAndPriorities) {
    EXPECT_THAT(CachedStoreRecord::getCachedConfigStorePrioityMap(L"PresenceConfigStore:31;TftpStore:41;"),
                ElementsAre(Pair(L"PresenceConfigStore", L"31"), Pair(L"TftpStore", L"41")));
}

TEST(CachedStoreRecord, SkipsMalformedEntriesWithoutALine) {
    const testing_host::LogRecorder log;
    EXPECT_THAT(CachedStoreRecord::getCachedConfigStorePrioityMap(L"A:abc;B;C:1:2;;"), ElementsAre(Pair(L"A", L"abc")));
    EXPECT_THAT(CachedStoreRecord::getCachedConfigStorePrioityMap(L"B:"), ElementsAre(Pair(L"B", L"")));
    EXPECT_THAT(CachedStoreRecord::getCachedConfigStorePrioityMap(L""), IsEmpty());
    EXPECT_THAT(log.getRecords(), IsEmpty());
}

TEST(CachedStoreRecord, ARepeatedNameHasItsLastPriorityAndFirstSpelling) {
    EXPECT_THAT(CachedStoreRecord::getCachedConfigStorePrioityMap(L"Store:1;STORE:2;"),
                ElementsAre(Pair(L"Store", L"2")));
}

TEST(CachedStoreRecord, WritesEntriesInNameOrderEachEndingWithASemicolon) {
    EXPECT_EQ(CachedStoreRecord::format({{L"b", L"2"}, {L"A", L"1"}}), L"A:1;b:2;");
    EXPECT_EQ(CachedStoreRecord::format({}), L"");
}

TEST(CachedStoreRecord, CutsAnEntryIgnoringCase) {
    EXPECT_EQ(CachedStoreRecord::without(L"A:1;Tftp:41;B:2;", L"TFTP"), L"A:1;B:2;");
    EXPECT_EQ(CachedStoreRecord::without(L"A:1;Tftp:41", L"tftp"), L"A:1;");
}

TEST(CachedStoreRecord, CutsTheTextEvenInsideALongerName) {
    EXPECT_EQ(CachedStoreRecord::without(L"MyTftp:41;B:2;", L"Tftp"), L"MyB:2;");
}

TEST(CachedStoreRecord, AnEmptyNameCutsTheFirstEntry) {
    EXPECT_EQ(CachedStoreRecord::without(L"A:1;B:2;", L""), L"B:2;");
}

TEST(CachedStoreRecord, AnUnknownNameCutsNothing) {
    EXPECT_EQ(CachedStoreRecord::without(L"A:1;", L"Longer than the record"), L"A:1;");
    EXPECT_EQ(CachedStoreRecord::without(L"A:1;", L"B"), L"A:1;");
}

TEST(CachedStoreRecord, AnEarlierEntryThatEndsWithTheNameIsCutFirst) {
    EXPECT_EQ(CachedStoreRecord::without(L"ATftp:1;Tftp:2;", L"Tftp"), L"ATftp:2;");
}

} // namespace ZelUnified
