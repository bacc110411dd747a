#include "ReportFile.h"

#include "output/Failure.h"

#include <zel/RegularFile.h>

#include <cerrno>
#include <system_error>

namespace lumora_config {

namespace {

void writeReport(const std::string& path, const std::string& text) {
    const int error = zel::storage::RegularFile::replace(path, text);
    if (error == EEXIST) {
        throw Failure(ExitCode::Environment, path + ": cannot be written: it is not a regular file");
    }
    if (error != 0) {
        throw Failure(ExitCode::Environment, path + ": cannot be written: " + std::generic_category().message(error));
    }
}

} // namespace

void printOrWriteReport(const Command& command, const std::string& text, Printer& printer) {
    const bool isPage = !command.htmlFile.empty();
    const auto& path = isPage ? command.htmlFile : command.file;
    if (path.empty() || path == "-") {
        printer.showText("report", text);
        return;
    }
    writeReport(path, text);
    printer.showDone(command.name, (isPage ? "page" : "report") + std::string(" written to ") + path);
}

} // namespace lumora_config
