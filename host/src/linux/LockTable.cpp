#include "LockTable.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <fstream>
#include <iomanip>
#include <iterator>
#include <sstream>

namespace zel::platform {

namespace {

constexpr auto listPath = "/proc/locks";

/// Returns the device as the list spells it.
std::string spellDevice(dev_t device) {
    std::ostringstream text;
    text << std::hex << std::setfill('0') << std::setw(2) << major(device) << ':' << std::setw(2) << minor(device);
    return text.str();
}

} // namespace

LockTable::LockTable() {
    std::ifstream list(listPath);
    // An empty list and an absent one must differ.
    lines = list ? std::string(std::istreambuf_iterator<char>(list), {}) + '\n' : std::string();
}

bool LockTable::contains(int descriptor, long process) const {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) {
        return false;
    }
    const auto device = spellDevice(status.st_dev);
    const auto inode = std::to_string(status.st_ino);
    std::istringstream list(lines);
    for (std::string line; std::getline(list, line);) {
        // 1: FLOCK  ADVISORY  WRITE 4772 fe:00:10953274 0 EOF
        std::istringstream fields(line);
        std::string number;
        std::string kind;
        std::string mode;
        std::string access;
        std::string file;
        long holder = 0;
        if (!(fields >> number >> kind >> mode >> access >> holder >> file) || kind != "FLOCK") {
            continue;
        }
        const auto separator = file.rfind(':');
        const bool isFile = separator != std::string::npos && file.substr(separator + 1) == inode;
        if (isFile && (file.substr(0, separator) == device || (holder != 0 && holder == process))) {
            return true;
        }
    }
    return false;
}

} // namespace zel::platform
