// Reads the image that a debugger writes.
#include "ProcessImage.h"

#include <TemporaryProfile.h>
#include <unistd.h>

#include <cstdlib>

namespace memory_test {

std::string readProcessImage(pid_t process, const std::string& folder) {
    const std::string id = std::to_string(process);
    // The limit, in blocks of 512 bytes, prevents a process that reserves much memory from filling the disk.
    const std::string command = "ulimit -f 1048576; exec '" LUMORA_GCORE "' -o '" + folder + "/image' " + id + " >'" +
                                folder + "/debugger.log' 2>&1";
    if (std::system(command.c_str()) != 0) {
        return {};
    }
    const std::string path = folder + "/image." + id;
    std::string image = testing_host::readFile(path);
    unlink(path.c_str());
    return image;
}

} // namespace memory_test
