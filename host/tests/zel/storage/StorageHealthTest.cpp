#include <zel/StorageHealth.h>

#include <gtest/gtest.h>

#include <optional>

namespace zel::storage {

TEST(StorageHealth, AFileNeedsAttentionIfItExistsAndCannotBeUsed) {
    for (const auto state : {ReadResult::Unreadable, ReadResult::WrongKey, ReadResult::Damaged, ReadResult::Empty}) {
        EXPECT_TRUE((ProtectedFileHealth{"file", state, std::nullopt, false}).needsAttention()) << describe(state);
    }
    for (const auto state : {ReadResult::Ok, ReadResult::Absent}) {
        EXPECT_FALSE((ProtectedFileHealth{"file", state, std::nullopt, false}).needsAttention()) << describe(state);
    }
}

TEST(StorageHealth, AFileNeedsAttentionIfAChangeIsNotOnTheDisk) {
    const WriteOutcome failure{false, "the disk is full", {}};
    const WriteOutcome success{true, "", {}};
    EXPECT_TRUE((ProtectedFileHealth{"file", ReadResult::Ok, std::nullopt, true}).needsAttention());
    EXPECT_TRUE((ProtectedFileHealth{"file", ReadResult::Ok, failure, false}).needsAttention());
    EXPECT_FALSE((ProtectedFileHealth{"file", ReadResult::Ok, success, false}).needsAttention());
}

TEST(StorageHealth, AFileThatThisProcessDidNotWriteHasNoFailedWrite) {
    const WriteOutcome failure{false, "the disk is full", {}};
    EXPECT_FALSE((ProtectedFileHealth{"file", ReadResult::Ok, std::nullopt, false}).hasFailedWrite());
    EXPECT_TRUE((ProtectedFileHealth{"file", ReadResult::Ok, failure, false}).hasFailedWrite());
}

} // namespace zel::storage
