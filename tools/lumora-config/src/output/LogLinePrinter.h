#pragma once

#include "Output.h"

#include <zel/LogSink.h>

#include <memory>
#include <string_view>

namespace lumora_config {

/// Writes each log line to an output during the lifetime of this object. Main thread; log lines may come from any
/// thread.
class LogLinePrinter {
public:
    /// The output must outlive the printer and every thread that logs.
    explicit LogLinePrinter(Output& target)
        : sink(zel::logging::makeLineSink([&target](std::string_view line) { target.writeText(line); })) {
        zel::logging::addSink(sink);
    }
    ~LogLinePrinter() { zel::logging::removeSink(sink); }
    LogLinePrinter(const LogLinePrinter&) = delete;
    LogLinePrinter& operator=(const LogLinePrinter&) = delete;

private:
    const std::shared_ptr<zel::logging::LogSink> sink;
};

} // namespace lumora_config
