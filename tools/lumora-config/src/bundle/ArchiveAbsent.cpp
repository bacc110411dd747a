#include "Archive.h"
#include "output/Failure.h"

namespace lumora_config {

std::string makeArchive(const std::vector<ArchiveMember>& /*members*/, std::chrono::system_clock::time_point /*time*/,
                        const std::string& /*pluginDirectory*/) {
    throw Failure(ExitCode::Environment, "this build of the program cannot write archives");
}

std::string getArchiveLibrary(const std::string& /*pluginDirectory*/) {
    return "none";
}

} // namespace lumora_config
