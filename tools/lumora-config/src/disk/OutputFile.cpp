#include "OutputFile.h"

#include "DiskCheck.h"
#include "output/Failure.h"

#include <zel/RegularFile.h>

#include <cerrno>
#include <system_error>

namespace lumora_config {

void writeOutputFile(const std::string& path, const std::string& content) {
    const int error = zel::storage::RegularFile::replace(path, content);
    if (error == EEXIST) {
        throw Failure(ExitCode::Environment, path + ": cannot be written: it is not a regular file");
    }
    if (error != 0) {
        throw Failure(ExitCode::Environment, path + ": cannot be written: " + std::generic_category().message(error));
    }
    DiskCheck::requireFile(path, content);
}

} // namespace lumora_config
