#include "ChainPage.h"

#include "EscapedText.h"

#include <kyr/StringUtils.h>
#include <zel/ZelLog.h>

#include <ConfigCatalogue.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <map>
#include <nlohmann/json.hpp>
#include <utility>

namespace lumora_config {

namespace {

using KyrCoreUtils::toString;
using nlohmann::json;
namespace ConfigKeys = ZelUnified::ConfigKeys;

struct KnownStore {
    std::string_view name;
    std::string_view holds;
};

constexpr std::array knownStores{
    KnownStore{ConfigKeys::localFileConfigStore, "what the user set"},
    KnownStore{ConfigKeys::registryConfigStore, "the administrator's policy"},
    KnownStore{ConfigKeys::urlProvisioningConfigStore, "what a provisioning link set"},
    KnownStore{ConfigKeys::mdmConfigStore, "what device management pushed"},
    KnownStore{ConfigKeys::bootstrapConfigStore, "the installer's file"},
    KnownStore{ConfigKeys::inMemoryConfigStore, "values for one run"},
    KnownStore{ConfigKeys::configDefaultsFile, "defaults of the installation"},
};

std::string shown(std::wstring_view text) {
    return toString(makeVisible(text));
}

std::string shown(const std::string& text) {
    return shown(KyrCoreUtils::toWideString(text));
}

/// Masks personal data as the log does; for texts about the machine.
std::string shownMasked(const std::string& text) {
    return shown(ZelLogger_replacePIIData(text));
}

std::string describeContent(const std::string& storeName) {
    const auto* const known = std::ranges::find(knownStores, storeName, &KnownStore::name);
    return std::string(known == knownStores.end() ? "added by another service" : known->holds);
}

/// Returns JSON that is safe inside a script element: it contains no "<", so no end tag and no comment, and no line
/// separators of Unicode.
std::string toEmbeddedText(const json& data) {
    constexpr std::string_view separators = "\xE2\x80"; // U+2028 ends in A8, U+2029 in A9
    const auto text = data.dump(-1, ' ', false, json::error_handler_t::replace);
    std::string escaped;
    escaped.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto third = i + 2 < text.size() ? static_cast<unsigned char>(text[i + 2]) : 0U;
        if (text[i] == '<') {
            escaped += "\\u003c";
        } else if (text.compare(i, 2, separators) == 0 && (third == 0xA8U || third == 0xA9U)) {
            escaped += third == 0xA8U ? "\\u2028" : "\\u2029";
            i += 2;
        } else {
            escaped += text[i];
        }
    }
    return escaped;
}

/// Returns the key in the spelling of the catalogue: the stores that read files return lower case.
std::string nameOf(const Explanation& key) {
    return shown(ConfigKeys::spellKey(key.newName));
}

std::string meaningOf(const Explanation& key) {
    const auto* const row = ConfigKeys::findKey(key.newName);
    return std::string(row == nullptr ? std::string_view() : row->meaning);
}

/// Builds the data of the page. Rows are arrays instead of objects, since there may be tens of thousands of them.
class PageData {
public:
    explicit PageData(const ChainFindings& chainFindings) : findings(chainFindings) {
        for (const auto& store : findings.stores) {
            storeNames.push_back(KyrCoreUtils::toWideString(store.name));
        }
    }

    json build() {
        auto keys = describeKeys();
        return {{"version", LUMORA_VERSION},
                {"madeAt", findings.madeAt},
                {"profile", shownMasked(findings.profile)},
                {"host", shownMasked(findings.host)},
                {"showsSecrets", findings.showsSecrets},
                {"stores", describeStores()},
                {"health", describeHealth()},
                {"files", files},
                {"keys", std::move(keys)}};
    }

    /// Returns the rows of the table for readers without scripts.
    std::string buildRows() const {
        std::string rows;
        for (const auto& key : findings.keys) {
            if (!key.inForce) {
                continue;
            }
            // The end tags of rows and cells are optional.
            rows += "<tr><th scope=\"row\">" + escapeHtml(nameOf(key));
            rows += "<td>" + escapeHtml(shown(key.inForce->value));
            rows += "<td>" + escapeHtml(shown(key.inForce->storeName)) + "\n";
        }
        return rows;
    }

private:
    json describeStores() const {
        json stores = json::array();
        for (const auto& store : findings.stores) {
            stores.push_back({{"priority", store.priority},
                              {"name", shown(store.name)},
                              {"holds", describeContent(store.name)},
                              {"readOnly", store.readOnly},
                              {"local", store.local},
                              {"keys", store.keyCount}});
        }
        return stores;
    }

    json describeHealth() const {
        json items = json::array();
        for (const auto& item : findings.health.items) {
            items.push_back({{"area", item.area},
                             {"path", shownMasked(item.path)},
                             {"state", shownMasked(item.state)},
                             {"attention", item.needsAttention}});
        }
        return items;
    }

    json describeKeys() {
        json keys = json::array();
        for (const auto& key : findings.keys) {
            keys.push_back(describe(key));
        }
        return keys;
    }

    /// A key: its name, what the stores hold, the value in force, the administrator's value, 1 if it is overridden plus
    /// 2 if it is sensitive, its old name, its meaning. The last two are absent if they are empty.
    json describe(const Explanation& key) {
        json holdings = json::array();
        for (const auto& opinion : key.opinions) {
            const auto store = std::ranges::find(findings.stores, opinion.store.name, &StoreFacts::name);
            for (const auto& holding : opinion.holdings) {
                holdings.push_back(describe(holding, store - findings.stores.begin(), holding.name == key.oldName));
            }
        }
        json row{nameOf(key), std::move(holdings), toReference(key.inForce, key), toReference(key.administrators, key),
                 (key.record.overridden ? 1 : 0) + (key.sensitive ? 2 : 0)};
        row.push_back(key.oldName ? shown(*key.oldName) : "");
        row.push_back(meaningOf(key));
        const auto isBlank = [](const json& field) {
            return field.is_string() && field.get_ref<const std::string&>().empty();
        };
        while (isBlank(row.back())) {
            row.erase(row.size() - 1);
        }
        return row;
    }

    /// What a store holds: the number of the store, the value, 1 if it is held under the old name, the origin. The last
    /// two are absent if they are 0 and unknown.
    json describe(const Holding& holding, std::ptrdiff_t store, bool underOldName) {
        json row{store, shown(holding.value)};
        if (underOldName || holding.origin.isKnown()) {
            row.push_back(underOldName ? 1 : 0);
        }
        if (holding.origin.isKnown()) {
            row.push_back(describe(holding.origin));
        }
        return row;
    }

    /// An origin: the number of the file or null, the line, how and when the value arrived. The last two are absent for
    /// a value that was read from a file.
    json describe(const Origin& origin) {
        json row{nullptr, origin.line};
        if (!origin.file.empty()) {
            row[0] = numberOf(origin.file);
        }
        if (!origin.how.empty()) {
            row.push_back(shown(origin.how));
            row.push_back(origin.when);
        }
        return row;
    }

    /// Thousands of values come from a few files.
    std::size_t numberOf(const std::string& file) {
        const auto [entry, isNew] = fileNumbers.try_emplace(file, files.size());
        if (isNew) {
            files.push_back(shownMasked(file));
        }
        return entry->second;
    }

    /// Returns the index of the reading among the holdings of all stores; its value and store if it equals none of
    /// them; null if there is no reading.
    json toReference(const std::optional<Reading>& reading, const Explanation& key) const {
        if (!reading) {
            return nullptr;
        }
        std::size_t position = 0;
        for (const auto& opinion : key.opinions) {
            for (const auto& holding : opinion.holdings) {
                if (reading->value == holding.value && isNamed(opinion.store, reading->storeName) &&
                    reading->underOldName == (holding.name == key.oldName)) {
                    return position;
                }
                ++position;
            }
        }
        return {shown(reading->value), shown(reading->storeName)};
    }

    bool isNamed(const StoreFacts& store, const std::wstring& name) const {
        const auto known = std::ranges::find(findings.stores, store.name, &StoreFacts::name);
        return known != findings.stores.end() &&
               KyrCoreUtils::caseInsensitiveStringEquals(
                   storeNames[static_cast<std::size_t>(known - findings.stores.begin())], name);
    }

    const ChainFindings& findings;
    std::vector<std::wstring> storeNames;
    std::vector<std::string> files;
    std::map<std::string, std::size_t> fileNumbers;
};

/// Replaces each `{{name}}` of the template by the HTML of that name. What is inserted is not searched again.
std::string fillIn(std::string_view text, const std::map<std::string_view, std::string>& parts) {
    std::string page;
    for (auto begin = text.find("{{"); begin != std::string_view::npos; begin = text.find("{{")) {
        const auto end = text.find("}}", begin);
        page += text.substr(0, begin);
        page += parts.at(text.substr(begin + 2, end - begin - 2));
        text.remove_prefix(end + 2);
    }
    page += text;
    return page;
}

} // namespace

std::string renderChainPage(const ChainFindings& findings) {
    PageData data(findings);
    const std::string warning =
        findings.showsSecrets
            ? "<p class=\"alarm\" role=\"note\">This page shows secrets in clear. Do not pass it on.</p>"
            : "";
    return fillIn(getChainPageTemplate(), {{"version", LUMORA_VERSION},
                                           {"madeAt", escapeHtml(findings.madeAt)},
                                           {"profile", escapeHtml(shownMasked(findings.profile))},
                                           {"host", escapeHtml(shownMasked(findings.host))},
                                           {"warning", warning},
                                           {"rows", data.buildRows()},
                                           {"data", toEmbeddedText(data.build())}});
}

} // namespace lumora_config
