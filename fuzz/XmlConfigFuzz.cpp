// A document gives the same table from memory and from a plain file, and the table survives its own document.
#include "Require.h"
#include "featuresets/adapters/config/XmlConfigParser.h"

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

} // namespace

// The name is libFuzzer's.
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

    std::string written;
    ConfigMap again;
    ConfigKeySet none;
    require(XmlConfigParser::writeToMemory(written, values));
    require(XmlConfigParser::readFromMemory(written, again, none));
    require(again == values && none.empty());
    return 0;
}
