#include "SpdlogSink.h"

#include "kyr/PathText.h"
#include "kyr/PlatformFiles.h"

#include <kyr/FileUtils.h>

#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/sinks/stdout_sinks.h>

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

/// Before each opening, the first and those of a rotation, so that no file is ever readable by others.
void makePrivate(const spdlog::filename_t& name) {
    if (const auto path = KyrCoreUtils::pathFromText(name)) {
        KyrCoreUtils::platform::makePrivateFile(*path);
    }
}

} // namespace

class SpdlogSink::Output {
public:
    explicit Output(std::unique_ptr<spdlog::sinks::sink> to) : sink(std::move(to)) { sink->set_pattern(linePattern); }

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
            std::make_unique<Output>(
                std::make_unique<spdlog::sinks::rotating_file_sink_mt>(path, fileSize, keptFiles, false, handlers)),
            ZelLogLevel::Debug);
    } catch (const spdlog::spdlog_ex&) {
        return nullptr;
    }
}

std::shared_ptr<LogSink> SpdlogSink::standardError(ZelLogLevel mildest) {
    return std::make_shared<SpdlogSink>(std::make_unique<Output>(std::make_unique<spdlog::sinks::stderr_sink_mt>()),
                                        mildest);
}

SpdlogSink::SpdlogSink(std::unique_ptr<Output> to, ZelLogLevel mildestLevel)
    : output(std::move(to)), mildest(mildestLevel) {}

SpdlogSink::~SpdlogSink() = default;

void SpdlogSink::write(const LogRecord& record) {
    if (record.level > mildest) {
        return;
    }
    const spdlog::source_loc place(record.file.c_str(), record.line, record.function.c_str());
    output->sink->log({place, record.logger, levelOf(record.level), record.text});
    output->sink->flush();
}

} // namespace zel::logging
