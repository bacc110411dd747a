#include "Versions.h"

#include "Archive.h"

#include <kyr/ProcessUtils.h>

#include <libxml/xmlversion.h>
#include <openssl/crypto.h>

#include <nlohmann/json.hpp>

namespace lumora_config {

std::string describeVersions(const std::string& client, const std::string& pluginDirectory) {
    nlohmann::ordered_json versions{{"type", "versions"},
                                    {"lumora-config", LUMORA_VERSION},
                                    {"client", nullptr},
                                    {"system", KyrCoreUtils::ProcessUtils::getSystemName()},
                                    {"libraries",
                                     {{"archive", getArchiveLibrary(pluginDirectory)},
                                      {"crypto", OpenSSL_version(OPENSSL_VERSION)},
                                      {"xml", "libxml2 " LIBXML_DOTTED_VERSION}}}};
    if (!client.empty()) {
        versions["client"] = client;
    }
    return versions.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + '\n';
}

} // namespace lumora_config
