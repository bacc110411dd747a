// A document gives the same table from memory, from a plain file and from a protected one, and again after the table is
// written.
#include "Require.h"
#include "featuresets/adapters/config/xml/XmlConfigParser.h"
#include "model/UnsyncedFiles.h"
#include "secure/SecureString.h"

#include <zel/EncryptFileUtils.h>

#include <TemporaryProfile.h>

#include <cstdint>
#include <string>

using fuzz::require;
using ZelUnified::ConfigKeySet;
using ZelUnified::ConfigMap;
using ZelUnified::XmlConfigParser;

namespace {

void requireSameFromFile(const std::string& text, const ConfigMap& values, const ConfigKeySet& sensitive) {
    static const testing_host::TemporaryProfile profile;
    static const std::string path = (profile.root() / "document.xml").string();
    testing_host::writeFile(path, text);
    ConfigMap fromFile;
    ConfigKeySet sensitiveInFile;
    require(XmlConfigParser::readFromFile(path, fromFile, sensitiveInFile));
    require(fromFile == values && sensitiveInFile == sensitive);
}

void requireSameFromProtectedFile(const std::string& text, const ConfigMap& values, const ConfigKeySet& sensitive) {
    static const testing_host::TemporaryProfile profile;
    static const config_model::UnsyncedFiles unsynced;
    static const std::string path = (profile.config() / "document.dat").string();
    using zel::storage::EncryptFileUtils;
    require(EncryptFileUtils::writeDataToFile(path, zel::SecureString(text), zel::storage::FileCategoryType::UserData));
    ConfigMap fromFile;
    ConfigKeySet sensitiveInFile;
    const bool isRead = XmlConfigParser::readFromEncryptedFile(path, fromFile, sensitiveInFile);
    // The reader ends the text at a zero byte, which occurs only in other encodings.
    require(isRead || (text.find('\0') != std::string::npos && fromFile.empty()));
    require(!isRead || (fromFile == values && sensitiveInFile == sensitive));
}

} // namespace

// libFuzzer prescribes the name.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) { // NOLINT(readability-identifier-naming)
    const std::string text(reinterpret_cast<const char*>(data), size);
    ConfigMap values{{L"left", L"over"}};
    ConfigKeySet sensitive;
    if (!XmlConfigParser::readFromMemory(text, values, sensitive)) {
        require(values.empty() && sensitive.empty());
        return 0;
    }
    for (const auto& key : sensitive) {
        require(values.contains(key));
    }
    requireSameFromFile(text, values, sensitive);
    requireSameFromProtectedFile(text, values, sensitive);

    std::string written;
    ConfigMap again;
    ConfigKeySet none;
    require(XmlConfigParser::writeToMemory(written, values));
    require(XmlConfigParser::readFromMemory(written, again, none));
    require(again == values && none.empty());
    return 0;
}
