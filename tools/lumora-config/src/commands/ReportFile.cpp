#include "ReportFile.h"

#include "disk/OutputFile.h"

#include <string>

namespace lumora_config {

void printOrWriteReport(const Command& command, const std::string& text, Printer& printer) {
    const bool isPage = !command.htmlFile.empty();
    const auto& path = isPage ? command.htmlFile : command.file;
    if (path.empty() || path == "-") {
        printer.showText("report", text);
        return;
    }
    writeOutputFile(path, text);
    printer.showDone(command.name, (isPage ? "page" : "report") + std::string(" written to ") + path);
}

} // namespace lumora_config
