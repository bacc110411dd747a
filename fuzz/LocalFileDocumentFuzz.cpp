// A table read from any local document is equal after it is written and read again.
#include "Require.h"
#include "featuresets/adapters/config/stores/LocalFileDocument.h"
#include "secure/SecureString.h"
#include "table/ConfigTable.h"

#include <algorithm>
#include <cstdint>
#include <string>

using fuzz::require;
using ZelUnified::ConfigMap;
using ZelUnified::ConfigTable;
using ZelUnified::LocalFileDocument;
using ZelUnified::XmlReader;

namespace {

/// The library refuses very long values when it reads them again.
constexpr std::size_t comparedLength = 1'000'000;

std::string write(const ConfigMap& values) {
    zel::SecureString content;
    ConfigTable table(values);
    LocalFileDocument::getDataString(table, content);
    std::string text;
    content.withClearText([&](std::string_view clear) { text = clear; });
    return text;
}

bool isSame(const ConfigMap& a, const ConfigMap& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const auto& x, const auto& y) {
        return KyrCoreUtils::caseInsensitiveStringEquals(x.first, y.first) && x.second == y.second;
    });
}

} // namespace

// libFuzzer prescribes the name.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) { // NOLINT(readability-identifier-naming)
    const auto document = XmlReader::parseDoc(std::string(reinterpret_cast<const char*>(data), size));
    if (!document) {
        return 0;
    }
    ConfigMap values;
    LocalFileDocument("LocalFileConfigStore", values).read(document);
    const std::string text = write(values);
    if (text.size() > comparedLength) {
        return 0;
    }
    ConfigMap again;
    const auto written = XmlReader::parseDoc(text);
    require(written != nullptr);
    LocalFileDocument("LocalFileConfigStore", again).read(written);
    require(isSame(values, again));
    return 0;
}
