#pragma once

#include <zel/LogSink.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace zel::logging {

/// Writes records of the level `mildest` and of more severe levels through spdlog.
class SpdlogSink final : public LogSink {
public:
    /// Opens a rotating file: 5 MiB per file, three old files, each accessible to its owner only. Returns null if the
    /// file cannot be opened.
    static std::shared_ptr<LogSink> openFile(const std::string& path);
    static std::shared_ptr<LogSink> standardError(ZelLogLevel mildest);
    static std::shared_ptr<LogSink> passLinesTo(std::function<void(std::string_view)> writeLine);

    class Output;
    SpdlogSink(std::unique_ptr<Output> to, ZelLogLevel mildestLevel);
    ~SpdlogSink() override;

    void write(const LogRecord& record) override;

private:
    const std::unique_ptr<Output> output;
    const ZelLogLevel mildest;
};

} // namespace zel::logging
