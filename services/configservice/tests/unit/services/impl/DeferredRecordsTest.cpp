#include "services/impl/DeferredRecords.h"

#include "ServiceFixture.h"
#include "services/impl/ConfigValueImpl.h"

#include <utility>

namespace ZelUnified {
namespace {

struct DeferredRecordsTest : configservice_test::ServiceFixture {
    std::shared_ptr<ConfigValueImpl> add(const std::wstring& key) {
        auto record = std::make_shared<ConfigValueImpl>(factory, key);
        records.add(record);
        return record;
    }

    DeferredRecords records;
};

TEST_F(DeferredRecordsTest, AreGivenInTheirOrderIgnoringCase) {
    const auto first = add(L"First");
    const auto second = add(L"Second");
    EXPECT_EQ(records.take(L"FIRST"), first);
    EXPECT_EQ(records.take(L"second"), second);
    EXPECT_EQ(records.take(L"second"), nullptr);
}

TEST_F(DeferredRecordsTest, AreForgottenWhenAnotherKeyIsAskedFor) {
    auto first = add(L"First");
    add(L"Second");
    EXPECT_EQ(records.take(L"Second"), nullptr);
    EXPECT_EQ(records.take(L"First"), nullptr);
    const std::weak_ptr released = std::exchange(first, nullptr);
    EXPECT_TRUE(released.expired());
}

TEST_F(DeferredRecordsTest, BeginAnewOnceOneWasTaken) {
    const auto first = add(L"First");
    add(L"Second");
    EXPECT_EQ(records.take(L"First"), first);
    const auto other = add(L"Other");
    EXPECT_EQ(records.take(L"Other"), other);
    EXPECT_EQ(records.take(L"Second"), nullptr);
}

TEST_F(DeferredRecordsTest, AreLetGoOfWhenTheyAreTaken) {
    auto record = add(L"First");
    add(L"Second");
    records.take(L"First");
    const std::weak_ptr released = std::exchange(record, nullptr);
    EXPECT_TRUE(released.expired());
}

} // namespace
} // namespace ZelUnified
