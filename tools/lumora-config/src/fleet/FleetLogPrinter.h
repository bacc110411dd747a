#pragma once

#include "output/Printer.h"

#include <zel/LogSink.h>

#include <memory>

namespace lumora_config {

/// Prints what the plug-in logs about its watch, as warnings, during the lifetime of this object: the cluster cannot be
/// followed, it can be followed again, a key is skipped. Main thread; log lines may come from any thread.
class FleetLogPrinter {
public:
    /// The printer must outlive this object and every thread that logs.
    explicit FleetLogPrinter(Printer& printer) : sink(std::make_shared<Sink>(printer)) { zel::logging::addSink(sink); }
    ~FleetLogPrinter() { zel::logging::removeSink(sink); }
    FleetLogPrinter(const FleetLogPrinter&) = delete;
    FleetLogPrinter& operator=(const FleetLogPrinter&) = delete;

private:
    class Sink final : public zel::logging::LogSink {
    public:
        explicit Sink(Printer& target) : printer(target) {}

        void write(const zel::logging::LogRecord& record) override {
            const bool isAboutWatch = record.logger == "Fleet-Watch" || record.logger == "Fleet-Table";
            if (isAboutWatch && record.level != ZelLogLevel::Debug) {
                printer.showWarning(record.text);
            }
        }

    private:
        Printer& printer;
    };

    const std::shared_ptr<zel::logging::LogSink> sink;
};

} // namespace lumora_config
