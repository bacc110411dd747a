#pragma once

#include <zel/LogSink.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace zel::logging {

/// Sends records from `worst` down to the numbers of severe levels to a place that spdlog writes to.
class SpdlogSink final : public LogSink {
public:
    /// 5 MiB a file, three old ones kept, each for the owner alone. Null when the file can't be opened.
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
