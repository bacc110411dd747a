#pragma once

#include <zel/LogSink.h>
#include <zel/ZelLog.h>

#include <LogRecorder.h>
#include <TemporaryProfile.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string_view>
#include <utility>

namespace zel_log_test {

/// Passes each record to a function.
class FunctionSink final : public zel::logging::LogSink {
public:
    using LogRecord = zel::logging::LogRecord;

    explicit FunctionSink(std::function<void(const LogRecord&)> function) : work(std::move(function)) {}
    void write(const LogRecord& record) override { work(record); }

private:
    std::function<void(const LogRecord&)> work;
};

/// Writes lines with a fixed place, and closes the log files at the end.
class ZelLogFixture : public testing::Test {
protected:
    void TearDown() override { zel::logging::closeLogFiles(); }

    void write(ZelLogLevel level, std::string_view text) { ZelLog(logger, level, "src/File.cpp", 7, "ns::A::f", text); }

    ZelLogger& logger = ZelLogger_getLogger("Test");
};

} // namespace zel_log_test
