#include "KeysPage.h"

#include <kyr/StringUtils.h>

#include <ConfigCatalogue.h>

#include <sstream>

namespace configservice_test {

namespace {

using KyrCoreUtils::toString;
using ZelUnified::ConfigKeys::CatalogueEntry;
using ZelUnified::ConfigKeys::KeyKind;
using ZelUnified::ConfigKeys::KeyRow;

std::string code(std::string_view text) {
    return "`" + std::string(text) + "`";
}

std::string code(std::wstring_view text) {
    return code(toString(text));
}

std::string describeValues(const KeyRow& row) {
    std::string text;
    if (row.kind != KeyKind::Text) {
        text = std::string(describeKind(row.kind)) + ": " + describePermittedValues(row);
    }
    if (!row.rule.empty()) {
        text += (text.empty() ? "" : ". Rule: ") + std::string(row.rule);
    }
    return text;
}

std::string describeUse(const KeyRow& row) {
    std::string text(row.use);
    if (row.isProvisionable()) {
        text += std::string(text.empty() ? "" : " ") + "A provisioning URL may set it.";
    }
    return text;
}

void writeKeys(std::ostream& page) {
    page << "## Keys\n\n| key | meaning | sensitive | values | used here |\n| --- | --- | --- | --- | --- |\n";
    for (const auto& row : ZelUnified::ConfigKeys::keys) {
        page << "| " << code(row.name) << " | " << row.meaning << " | " << (row.isSensitive() ? "yes" : "") << " | "
             << describeValues(row) << " | " << describeUse(row) << " |\n";
    }
}

void writeOldNames(std::ostream& page) {
    page
        << "\n## Old names\n\n"
           "A store may hold a key under either name, and a client may ask for either. The new name wins in whichever\n"
           "store it is.\n\n"
           "| old name | new name |\n| --- | --- |\n";
    for (const auto& row : ZelUnified::ConfigKeys::keys) {
        if (row.isRenamed()) {
            page << "| " << code(row.oldName) << " | " << code(row.name) << " |\n";
        }
    }
}

void writeNames(std::ostream& page) {
    page << "\n## Stores, files and other texts\n\n| text | meaning | used here |\n| --- | --- | --- |\n";
    for (const auto& row : ZelUnified::ConfigKeys::names) {
        page << "| " << std::visit([](auto text) { return code(text); }, row.text) << " | " << row.meaning << " | "
             << row.use << " |\n";
    }
}

} // namespace

std::string writeKeysPage() {
    std::ostringstream page;
    page << R"(# The catalogue of names

For everybody who uses keys: the names that the configuration and its clients share. This page is generated from
`services/configservice/include/ConfigKeys.def`; do not edit it.

Keys are looked up ignoring case; lists and messages of `lumora-config` have the spelling here, misspellings included. A
name that is not used here belongs to the vocabulary of the client's other services. The value of a sensitive key is
masked, with [exceptions](administrators.md#sensitive-values). A key without an entry under values may have any text as
value. Other keys may be used as well: the chain accepts any name.

)";
    writeKeys(page);
    writeOldNames(page);
    writeNames(page);
    return page.str();
}

} // namespace configservice_test
