#include "ConfigReport.h"

#include "ConfigStoreManagerLogger.h"
#include "featuresets/adapters/config/xml/XmlWriter.h"
#include "secure/SecureString.h"

#include <kyr/FileUtils.h>
#include <kyr/StringUtils.h>
#include <zel/EncryptFileUtils.h>

#include <ConfigKeys.h>

namespace ZelUnified {

using KyrCoreUtils::FileUtils;
using KyrCoreUtils::toString;
using KyrCoreUtils::toWideString;

namespace {

constexpr std::string_view declarationEnd = "?>";

/// Returns where the content behind the XML declaration starts. A mark before position 2 does not end a
/// declaration. Without a mark the first byte is dropped.
std::size_t startOfContent(const std::string& text) {
    const auto mark = text.find(declarationEnd);
    if (mark == std::string::npos) {
        return 1;
    }
    return mark < 2 ? 0 : mark + declarationEnd.size();
}

} // namespace

std::wstring ConfigReport::describeStores(const StoreChain::Stores& stores, const IsSensitive& isSensitive,
                                          const LogPlace& place) {
    XmlWriter writer(XmlWriter::Declaration::Without);
    writer.startElement("AllMemoryConfigs");
    for (const auto& store : stores) {
        writeStore(writer, *store, isSensitive, place);
    }
    writer.endElement();
    return toWideString(writer.finish());
}

void ConfigReport::writeStore(XmlWriter& writer, ConfigStore& store, const IsSensitive& isSensitive,
                              const LogPlace& place) {
    const auto keys = store.getKeys();
    const auto name = store.getName();
    const auto priority = store.getPriority();
    if (name == ConfigKeys::configDefaultsFile || keys.empty()) {
        return;
    }
    writer.startElement("store");
    writer.writeAttribute("name", toWideString(name));
    writer.writeAttribute("priority", std::to_wstring(priority));
    std::wstring value;
    for (const auto& key : keys) {
        if (isSensitive(key)) {
            continue;
        }
        store.getValue(key, value);
        if (!writer.writeElement(toString(key), value)) {
            ZelLog(configStoreManagerLogger, ZelLogLevel::Warning, place,
                   L"Characters that XML can't carry are replaced in the report of key: " + key);
        }
    }
    writer.endElement();
}

std::wstring ConfigReport::getConfigForPRTFromFile() {
    std::wstring report;
    for (const auto* name : {"home-fenn-info.dat", "service-location.dat", "SSOAuthInfoStore.dat"}) {
        const auto path = FileUtils::getConfigDirectory() + FileUtils::FileSeparator() + name;
        zel::SecureString content;
        if (!zel::storage::EncryptFileUtils::readDataFromFile(path, content,
                                                              zel::storage::FileCategoryType::UserData)) {
            ZelLog(configStoreManagerLogger, ZelLogLevel::Error, ZEL_HERE, "Failed to read config file " + path);
            continue;
        }
        std::string text;
        content.withClearText([&](std::string_view clear) { text = clear; });
        auto shown = text.substr(startOfContent(text));
        zel::SecureString::wipe(text);
        report += toWideString(shown);
        zel::SecureString::wipe(shown);
    }
    return report;
}

} // namespace ZelUnified
