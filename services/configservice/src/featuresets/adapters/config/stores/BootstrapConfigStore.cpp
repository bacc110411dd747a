#include "StoreTable.h"
#include "table/WipedValues.h"

#include <kyr/FstreamUtils.h>
#include <zel/ZelLog.h>

#include <BootstrapConfigStore.h>
#include <ConfigMap.h>

#include <fstream>
#include <utility>

namespace ZelUnified {

namespace {

ZelLogger& bootstrapLogger = ZelLogger_getLogger("ConfigService-BootstrapConfigStore");

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view separator = ":";

void readLine(const std::string& line, ConfigMap& read) {
    if (line.empty() || KyrCoreUtils::trimleft(line).starts_with('#')) {
        return;
    }
    std::vector<std::string> pieces;
    KyrCoreUtils::split(line, pieces, separator);
    if (pieces.empty()) {
        return;
    }
    std::string value;
    for (std::size_t i = 1; i < pieces.size(); ++i) {
        if (i > 1) {
            value += separator;
        }
        value += pieces[i];
    }
    overwriteValue(read[KyrCoreUtils::toWideString(KyrCoreUtils::trim(pieces.front()))],
                   KyrCoreUtils::toWideString(KyrCoreUtils::trim(value)));
}

void readLines(std::istream& stream, ConfigMap& read) {
    std::string line;
    for (bool first = true; std::getline(stream, line); first = false) {
        if (first && line.starts_with(byteOrderMark)) {
            line.erase(0, byteOrderMark.size());
        }
        // The file may have Windows line endings.
        if (line.ends_with('\r')) {
            line.pop_back();
        }
        readLine(line, read);
    }
}

} // namespace

BootstrapConfigStore::BootstrapConfigStore(const std::string& storeName, const std::string& path, int storePriority)
    : priority(storePriority),
      table(std::make_unique<StoreTable>(StoreTable::Rule::Trims)),
      filePath(path),
      name(storeName) {
    std::fstream stream;
    KyrCoreUtils::FstreamUtils::open(stream, filePath, KyrCoreUtils::StreamMode::Read);
    if (!stream.is_open()) {
        ZelLog(bootstrapLogger, ZelLogLevel::Warning, ZEL_HERE, "File does not exist " + filePath);
        return;
    }
    ConfigMap read;
    readLines(stream, read);
    table->replace(std::move(read));
}

BootstrapConfigStore::~BootstrapConfigStore() = default;

bool BootstrapConfigStore::getValue(const std::wstring& key, std::wstring& value) {
    return table->getValue(key, value);
}

std::vector<std::wstring> BootstrapConfigStore::getKeys() {
    return table->getKeys();
}

} // namespace ZelUnified
