#include "SystemCallTrace.h"

#include <array>
#include <cstdlib>
#include <fstream>
#include <string_view>

namespace memory_test {

namespace {

constexpr std::string_view announcement = "operation ";

/// strace writes every byte as "\xHH".
std::string textsOf(std::string_view line) {
    constexpr std::size_t lengthOfOne = 4;
    std::string bytes;
    for (auto at = line.find("\\x"); at != std::string_view::npos; at = line.find("\\x", at + lengthOfOne)) {
        bytes += static_cast<char>(std::stoi(std::string(line.substr(at + 2, 2)), nullptr, 16));
    }
    return bytes;
}

/// Returns true for calls that send bytes which strace does not show.
bool isUnseen(std::string_view name, std::string_view line) {
    constexpr std::array<std::string_view, 5> blind{"sendfile", "copy_file_range", "splice", "vmsplice",
                                                    "io_uring_setup"};
    for (const auto call : blind) {
        if (name == call) {
            return true;
        }
    }
    const bool mapsWritableFile = name == "mmap" && line.find("PROT_WRITE") != std::string_view::npos &&
                                  line.find("MAP_SHARED") != std::string_view::npos &&
                                  line.find("MAP_ANONYMOUS") == std::string_view::npos;
    return mapsWritableFile || line.find("\"...") != std::string_view::npos;
}

} // namespace

std::vector<std::string> SystemCallTrace::makeRunner(const std::string& file) {
    const std::string strace = LUMORA_STRACE;
    // Some machines have strace but do not permit tracing.
    if (strace.empty() || std::system(("'" + strace + "' -o /dev/null true 2>/dev/null").c_str()) != 0) {
        return {};
    }
    // strace ignores names that a machine does not know. A traced process cannot run a leak check.
    return {strace,
            "-f",
            "-qq",
            "-xx",
            "-s",
            "1048576",
            "-E",
            "ASAN_OPTIONS=detect_leaks=0",
            "-o",
            file,
            "-e",
            "trace=?write,?pwrite64,?writev,?pwritev,?pwritev2,?sendto,?sendmsg,?sendmmsg,?sendfile,?copy_file_range,"
            "?splice,?vmsplice,?io_uring_setup,?mmap,?open,?openat,?creat,?rename,?renameat,?renameat2,?link,?linkat,"
            "?symlink,?symlinkat,?unlink,?unlinkat,?mkdir,?mkdirat,?setxattr,?fsetxattr,?memfd_create,?execve"};
}

SystemCallTrace::SystemCallTrace(const std::string& file) {
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        read(line);
    }
}

/// Parses a line: "PID NAME(FIRST, ...) = RESULT".
void SystemCallTrace::read(const std::string& line) {
    const auto nameAt = line.find_first_not_of("0123456789 ");
    const auto bracket = line.find('(');
    if (nameAt == std::string::npos || bracket == std::string::npos || bracket < nameAt) {
        return;
    }
    const auto name = line.substr(nameAt, bracket - nameAt);
    ++calls[name];
    if (isUnseen(name, line)) {
        unseen.push_back(line.substr(0, 200));
    }
    const auto texts = textsOf(line);
    const auto target = line.substr(bracket + 1, line.find_first_of(",)", bracket) - bracket - 1);
    if (name == "write" && target == "1" && texts.starts_with(announcement)) {
        operation = texts.substr(announcement.size(), texts.find('\n') - announcement.size());
    }
    const bool isDescriptor = target.find_first_not_of("0123456789") == std::string::npos;
    operations[operation][isDescriptor ? target : "names"] += texts;
}

std::size_t SystemCallTrace::countCalls(const std::string& name) const {
    const auto found = calls.find(name);
    return found == calls.end() ? 0 : found->second;
}

} // namespace memory_test
