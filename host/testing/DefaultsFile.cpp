#include "DefaultsFile.h"

#include "TemporaryProfile.h"

#include <kyr/StringUtils.h>

namespace testing_host {

void DefaultsFile::add(const std::string& key, const std::string& value) {
    settings += " <userConfig name=\"" + key + "\" value=\"" + value + "\"/>\n";
}

void DefaultsFile::add(const std::wstring& key, const std::wstring& value) {
    add(KyrCoreUtils::toString(key), KyrCoreUtils::toString(value));
}

void DefaultsFile::write(const std::filesystem::path& resources) const {
    writeFile(resources / "lumora-config-defaults.xml", "<Lumora>\n" + settings + "</Lumora>\n");
}

} // namespace testing_host
