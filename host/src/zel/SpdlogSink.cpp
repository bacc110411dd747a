#include "SpdlogSink.h"

#include "kyr/PathText.h"
#include "kyr/PlatformFiles.h"

#include <kyr/FileUtils.h>

#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/base_sink.h>
#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/sinks/stdout_sinks.h>

#include <mutex>
#include <utility>

namespace zel::logging {

namespace {

constexpr std::size_t fileSize = std::size_t{5} * 1024 * 1024;
constexpr std::size_t keptFiles = 3;
constexpr auto linePattern = "%Y-%m-%d %H:%M:%S.%e %l [%n] %! %v";

spdlog::level::level_enum levelOf(ZelLogLevel level) {
    switch (level) {
    case ZelLogLevel::Error:
        return spdlog::level::err;
    case ZelLogLevel::Warning:
        return spdlog::level::warn;
    case ZelLogLevel::Debug:
        return spdlog::level::debug;
    case ZelLogLevel::Info:
        break;
    }
    return spdlog::level::info;
}

/// Called before each file is opened, including by a rotation, so that no file is ever readable by others.
void makePrivate(const spdlog::filename_t& name) {
    KyrCoreUtils::platform::makePrivateFile(name);
}

class FormattedLines final : public spdlog::sinks::base_sink<std::mutex> {
public:
    explicit FormattedLines(std::function<void(std::string_view)> lineWriter) : writeLine(std::move(lineWriter)) {}

private:
    void sink_it_(const spdlog::details::log_msg& message) override {
        spdlog::memory_buf_t line;
        formatter_->format(message, line);
        writeLine({line.data(), line.size()});
    }
    void flush_() override {}

    const std::function<void(std::string_view)> writeLine;
};

} // namespace

class SpdlogSink::Output {
public:
    explicit Output(std::unique_ptr<spdlog::sinks::sink> to) : sink(std::move(to)) {
        // The ends of lines are the same on every platform.
        sink->set_formatter(
            std::make_unique<spdlog::pattern_formatter>(linePattern, spdlog::pattern_time_type::local, "\n"));
    }

    const std::unique_ptr<spdlog::sinks::sink> sink;
};

std::shared_ptr<LogSink> SpdlogSink::openFile(const std::string& path) {
    const auto file = KyrCoreUtils::pathFromText(path);
    if (!file) {
        return nullptr;
    }
    const std::string folder = KyrCoreUtils::FileUtils::getParentDirectory(path);
    if ((!folder.empty() && KyrCoreUtils::FileUtils::createDirectory(folder) != 0) ||
        KyrCoreUtils::platform::makePrivateFile(*file) != 0) {
        return nullptr;
    }
    spdlog::file_event_handlers handlers;
    handlers.before_open = makePrivate;
    try {
        return std::make_shared<SpdlogSink>(
            std::make_unique<Output>(std::make_unique<spdlog::sinks::rotating_file_sink_mt>(
                file->native(), fileSize, keptFiles, false, handlers)),
            ZelLogLevel::Debug);
    } catch (const spdlog::spdlog_ex&) {
        return nullptr;
    }
}

std::shared_ptr<LogSink> SpdlogSink::standardError(ZelLogLevel mildest) {
    return std::make_shared<SpdlogSink>(std::make_unique<Output>(std::make_unique<spdlog::sinks::stderr_sink_mt>()),
                                        mildest);
}

std::shared_ptr<LogSink> SpdlogSink::passLinesTo(std::function<void(std::string_view)> writeLine) {
    return std::make_shared<SpdlogSink>(
        std::make_unique<Output>(std::make_unique<FormattedLines>(std::move(writeLine))), ZelLogLevel::Debug);
}

SpdlogSink::SpdlogSink(std::unique_ptr<Output> to, ZelLogLevel mildestLevel)
    : output(std::move(to)), mildest(mildestLevel) {}

SpdlogSink::~SpdlogSink() = default;

void SpdlogSink::write(const LogRecord& record) {
    if (record.level > mildest) {
        return;
    }
    const spdlog::source_loc location(record.file.c_str(), record.line, record.function.c_str());
    output->sink->log({location, record.logger, levelOf(record.level), record.text});
    output->sink->flush();
}

} // namespace zel::logging
