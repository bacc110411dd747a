// Builds the image from the resident pages: a sanitizer reserves terabytes, which a debugger would try to write. A
// sanitizer delays the reuse of freed memory, so the image shows more.
#include "ProcessImage.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <fstream>
#include <optional>
#include <sstream>

namespace memory_test {

namespace {

struct Mapping {
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
    std::string access;
    std::uint64_t residentKilobytes = 0;
    bool isInDumps = true; ///< False for the shadow memory of a sanitizer.
};

/// Parses the first line of a mapping. Returns nothing for the detail lines that follow it.
std::optional<Mapping> parseHead(const std::string& line) {
    std::istringstream fields(line);
    Mapping mapping;
    char dash = 0;
    if (fields >> std::hex >> mapping.begin >> dash >> mapping.end >> mapping.access && dash == '-') {
        return mapping;
    }
    return std::nullopt;
}

void readDetail(const std::string& line, Mapping& mapping) {
    std::istringstream fields(line);
    std::string name;
    fields >> name;
    if (name == "Rss:") {
        fields >> mapping.residentKilobytes;
    } else if (name == "VmFlags:") {
        mapping.isInDumps = line.find(" dd") == std::string::npos;
    }
}

void appendMemory(int memory, const Mapping& mapping, std::string& image) {
    constexpr std::uint64_t largest = std::uint64_t{1} << 30;
    if (mapping.access.front() != 'r' || mapping.residentKilobytes == 0 || !mapping.isInDumps ||
        mapping.end - mapping.begin > largest) {
        return;
    }
    const std::size_t before = image.size();
    image.resize(before + (mapping.end - mapping.begin));
    const ssize_t count =
        pread(memory, image.data() + before, image.size() - before, static_cast<off_t>(mapping.begin));
    image.resize(before + static_cast<std::size_t>(count > 0 ? count : 0));
}

} // namespace

std::string readProcessImage(pid_t process, const std::string& /*folder*/) {
    const std::string folder = "/proc/" + std::to_string(process);
    const int memory = open((folder + "/mem").c_str(), O_RDONLY | O_CLOEXEC);
    if (memory == -1) {
        return {};
    }
    std::string image;
    std::ifstream lines(folder + "/smaps");
    Mapping current;
    for (std::string line; std::getline(lines, line);) {
        if (const auto next = parseHead(line)) {
            current = *next;
            continue;
        }
        readDetail(line, current);
        if (line.starts_with("VmFlags:")) { // the last line of each mapping
            appendMemory(memory, current, image);
        }
    }
    close(memory);
    return image;
}

} // namespace memory_test
