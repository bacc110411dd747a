#include "logging/OperationLogger.h"

#include <LogRecorder.h>
#include <gtest/gtest.h>

#include <type_traits>

namespace ZelUnified {

TEST(OperationLogger, NamesTheFunctionOfAHelperAsAMemberOfItsClass) {
    const OperationLogger logger("ConfigAdapter");
    EXPECT_EQ(logger.nameOperation("ZelUnified::CachedStores::addCachedConfigStore"),
              "ZelUnified::ConfigAdapter::addCachedConfigStore");
    EXPECT_EQ(logger.nameOperation("ZelUnified::removeFilesFromDirectory"),
              "ZelUnified::ConfigAdapter::removeFilesFromDirectory");
    EXPECT_EQ(logger.nameOperation("removeFilesFromDirectory"), "ZelUnified::ConfigAdapter::removeFilesFromDirectory");
}

TEST(OperationLogger, LeavesMembersOfItsClassAndOfNestedClassesUnchanged) {
    const OperationLogger logger("ConfigAdapter");
    for (const auto* function : {"ZelUnified::ConfigAdapter::ConfigAdapter", "ZelUnified::ConfigAdapter::Part::call"}) {
        EXPECT_EQ(logger.nameOperation(function), function);
    }
    EXPECT_EQ(logger.nameOperation("ZelUnified::ConfigAdapterPart::call"), "ZelUnified::ConfigAdapter::call");
}

TEST(OperationLogger, WritesNarrowAndWideTextToTheLoggerOfItsClass) {
    const testing_host::LogRecorder log;
    const OperationLogger logger("ConfigAdapter");
    ZelLog(logger, ZelLogLevel::Warning, "file", 7, "Helper::call", "narrow");
    ZelLog(logger, ZelLogLevel::Info, "file", 8, "Helper::call", L"wide");
    const auto records = log.getRecords();
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[0].text, "narrow");
    EXPECT_EQ(records[0].level, ZelLogLevel::Warning);
    EXPECT_EQ(records[0].line, 7);
    EXPECT_EQ(records[1].text, "wide");
    for (const auto& record : records) {
        EXPECT_EQ(record.logger, "ConfigService-ConfigAdapter");
        EXPECT_EQ(record.file, "file");
        EXPECT_EQ(record.function, "ZelUnified::ConfigAdapter::call");
    }
}

TEST(OperationLogger, StaysUsableWhileStaticObjectsAreDestroyed) {
    EXPECT_TRUE(std::is_trivially_destructible_v<OperationLogger>);
}

TEST(OperationLogger, ReportsWhetherDebugLinesAreWritten) {
    const OperationLogger logger("ConfigAdapter");
    EXPECT_FALSE(ZelLog_isDebugEnabled(logger));
    const testing_host::LogRecorder log(testing_host::LogRecorder::Debug::On);
    EXPECT_TRUE(ZelLog_isDebugEnabled(logger));
}

} // namespace ZelUnified
