#include "Archive.h"

#include "ArchiveModule.h"
#include "host/ProgramModule.h"
#include "output/Failure.h"

#include <stdexcept>

namespace lumora_config {

std::string makeArchive(const std::vector<ArchiveMember>& members, std::chrono::system_clock::time_point time,
                        const std::string& pluginDirectory) {
    const auto make = findInModule<decltype(&MakeArchive)>(LUMORA_MODULE, "MakeArchive", pluginDirectory);
    try {
        std::string bytes;
        make(members, time, bytes);
        return bytes;
    } catch (const std::runtime_error& error) {
        throw Failure(ExitCode::Environment, std::string("the archive cannot be made: ") + error.what());
    }
}

std::string getArchiveLibrary(const std::string& pluginDirectory) {
    std::string name;
    findInModule<decltype(&GetArchiveLibrary)>(LUMORA_MODULE, "GetArchiveLibrary", pluginDirectory)(name);
    return name;
}

} // namespace lumora_config
