#include <zel/ReadResult.h>

#include <gtest/gtest.h>

namespace zel::storage {

TEST(ReadResult, IsDescribedInWords) {
    EXPECT_EQ(describe(ReadResult::Ok), "good");
    EXPECT_EQ(describe(ReadResult::Absent), "absent");
    EXPECT_EQ(describe(ReadResult::Unreadable), "unreadable");
    EXPECT_EQ(describe(ReadResult::WrongKey), "encrypted with another key");
    EXPECT_EQ(describe(ReadResult::Damaged), "damaged");
    EXPECT_EQ(describe(ReadResult::Empty), "empty");
}

TEST(ReadResult, AnUnknownNumberIsDescribedAsUnknown) {
    EXPECT_EQ(describe(static_cast<ReadResult>(77)), "unknown");
}

} // namespace zel::storage
