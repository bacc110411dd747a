#include "LogLinePrinter.h"

namespace lumora_config {

LogLinePrinter::LogLinePrinter(Output& target)
    : sink(zel::logging::makeLineSink([&target](std::string_view line) { target.writeText(line); })) {
    zel::logging::addSink(sink);
}

LogLinePrinter::~LogLinePrinter() {
    zel::logging::removeSink(sink);
}

} // namespace lumora_config
