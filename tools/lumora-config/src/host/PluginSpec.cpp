#include "PluginSpec.h"

#include "output/Failure.h"

#include <kyr/Paths.h>

#include <filesystem>

namespace lumora_config {

PluginSpec PluginSpec::parse(std::string_view text) {
    const auto separator = text.find('=');
    if (separator == std::string_view::npos || separator == 0 || separator + 1 == text.size()) {
        throw Failure(ExitCode::Usage, "'" + std::string(text) + "' is not of the form NAME=LIBRARY");
    }
    const auto library = KyrCoreUtils::toPath(text.substr(separator + 1));
    return {std::string(text.substr(0, separator)),
            KyrCoreUtils::toText(std::filesystem::absolute(library).lexically_normal())};
}

} // namespace lumora_config
