#include "ShellHistory.h"

#include "output/Failure.h"
#include "stores/XmlSettings.h"

#include <zel/RegularFile.h>

#include <sstream>
#include <utility>

namespace lumora_config {

ShellHistory::ShellHistory(std::string path) : file(std::move(path)) {
    try {
        std::istringstream content(readWholeFile(file));
        for (std::string line; std::getline(content, line);) {
            lines.push_back(line);
        }
    } catch (const Failure&) {
        lines.clear();
    }
}

int ShellHistory::add(const std::string& line, const Filter& isSecret) {
    if (lines.empty() || lines.back() != line) {
        lines.push_back(line);
    }
    std::erase_if(lines, isSecret);
    if (lines.size() > largestCount) {
        lines.erase(lines.begin(), lines.end() - largestCount);
    }
    std::string content;
    for (const auto& kept : lines) {
        content += kept + '\n';
    }
    return zel::storage::RegularFile::replace(file, content);
}

} // namespace lumora_config
