#include "TextPrinter.h"

#include "EscapedText.h"
#include "OriginText.h"
#include "SettingsText.h"
#include "TextTable.h"

#include <kyr/StringUtils.h>

#include <map>
#include <utility>

namespace lumora_config {

using Column = TextTable::Column;
using Style = TextTable::Style;

namespace {

std::string narrow(const std::wstring& text) {
    return toOneLine(KyrCoreUtils::toString(text));
}

std::string quote(const std::wstring& text) {
    return '"' + narrow(text) + '"';
}

std::string nameOfKey(const Explanation& explanation) {
    auto text = narrow(explanation.key);
    if (!explanation.oldName) {
        return text;
    }
    const auto other = explanation.isRequestedByOldName ? explanation.newName : *explanation.oldName;
    return text + (explanation.isRequestedByOldName ? ", the old name of " : ", once named ") + narrow(other);
}

std::string describe(const std::optional<Reading>& reading, const Explanation& explanation) {
    if (!reading) {
        return "none";
    }
    auto text = quote(reading->value) + " from " + narrow(reading->storeName);
    if (explanation.oldName) {
        text += reading->underOldName ? ", under the old name " + narrow(*explanation.oldName)
                                      : ", under the new name " + narrow(explanation.newName);
    }
    return text;
}

void addOpinion(TextTable& table, const Opinion& opinion) {
    auto priority = std::to_string(opinion.store.priority);
    auto store = toOneLine(opinion.store.name);
    if (opinion.holdings.empty()) {
        table.addRow({"", priority, store, "-", "", ""}, Style::Faint);
        return;
    }
    for (const auto& holding : opinion.holdings) {
        table.addRow({holding.wins ? ">" : "", std::exchange(priority, ""), std::exchange(store, ""),
                      narrow(holding.name), quote(holding.value), toOneLine(describe(holding.origin))},
                     holding.wins ? Style::Emphasis : Style::Plain);
    }
}

std::string describe(const ImportedKey& key) {
    if (key.deleted) {
        return "deleted with all below it";
    }
    auto text = std::to_string(key.valuesSet) + " set";
    return key.valuesDeleted == 0 ? text : text + ", " + std::to_string(key.valuesDeleted) + " deleted";
}

} // namespace

TextPrinter::TextPrinter(Output& out, Output& messages) : output(out), diagnostics(messages) {}

void TextPrinter::showValue(const std::wstring& /*key*/, const std::optional<Reading>& reading, bool withOrigin) {
    if (!reading) {
        return;
    }
    std::string origin;
    if (withOrigin) {
        const auto place = toOneLine(describe(reading->origin));
        origin = "  (" + narrow(reading->storeName) + (reading->underOldName ? ", under its old name" : "") +
                 (place.empty() ? "" : ", " + place) + ')';
    }
    output.writeValue(KyrCoreUtils::toString(reading->value), origin);
}

void TextPrinter::showDefault(const std::wstring& /*key*/, const std::wstring& value) {
    output.writeValue(KyrCoreUtils::toString(value));
}

void TextPrinter::showExplanation(const Explanation& explanation) {
    TextTable opinions({Column::Left, Column::Right, Column::Left, Column::Left, Column::Left, Column::Left});
    opinions.addRow({"", "PRIORITY", "STORE", "NAME", "VALUE", "ORIGIN"}, Style::Faint);
    for (const auto& opinion : explanation.opinions) {
        addOpinion(opinions, opinion);
    }
    TextTable summary({Column::Left, Column::Left});
    summary.addRow({"in force", describe(explanation.inForce, explanation)});
    summary.addRow({"administrator's", describe(explanation.administrators, explanation)});
    summary.addRow({"overridden", explanation.record.overridden ? "yes" : "no"});
    const auto& form = output.getForm();
    output.writeEscaped(nameOfKey(explanation) + "\n\n" + opinions.toString(form) + '\n' + summary.toString(form));
}

void TextPrinter::showList(const std::vector<ListedValue>& values) {
    TextTable table({Column::Left, Column::Left, Column::Truncated, Column::Left});
    table.addRow({"", "KEY", "VALUE", "STORE"}, Style::Faint);
    for (const auto& listed : values) {
        table.addRow({listed.overridden ? "*" : "", narrow(listed.key), quote(listed.value), narrow(listed.storeName)},
                     listed.overridden ? Style::Emphasis : Style::Plain);
    }
    const auto& form = output.getForm();
    output.writeEscaped(table.toString(form, form.terminal ? TextTable::Padding::Aligned : TextTable::Padding::None));
}

void TextPrinter::showKeys(const std::vector<KeyFacts>& keys) {
    TextTable table({Column::Left, Column::Left, Column::Left, Column::Left, Column::Truncated});
    table.addRow({"KEY", "OLD NAME", "KIND", "SENSITIVE", "MEANING"}, Style::Faint);
    for (const auto& facts : keys) {
        table.addRow({narrow(facts.key), facts.oldName ? narrow(*facts.oldName) : "-", facts.kind,
                      facts.sensitive ? "sensitive" : "-", facts.meaning});
    }
    const auto& form = output.getForm();
    output.writeEscaped(table.toString(form, form.terminal ? TextTable::Padding::Aligned : TextTable::Padding::None));
}

void TextPrinter::showDescription(const KeyDescription& description) {
    TextTable table({Column::Left, Column::Left});
    const auto addRow = [&](const std::string& name, const std::string& text) {
        if (!text.empty()) {
            table.addRow({name, text});
        }
    };
    const auto& facts = description.facts;
    addRow("meaning", facts ? facts->meaning : "not in the catalogue");
    addRow("old name", facts && facts->oldName ? narrow(*facts->oldName) : "");
    addRow("sensitive", description.sensitive ? "yes" : "no");
    if (facts) {
        addRow("kind", facts->kind);
        addRow("permitted", facts->permitted);
        addRow("rule", facts->rule);
        addRow("used here", facts->use);
        addRow("provisioning", facts->provisionable ? "a URL may set it" : "a URL cannot set it");
    }
    addRow("value", description.inForce ? quote(description.inForce->value) : "none");
    if (description.inForce) {
        addRow("source", narrow(description.inForce->storeName) +
                             (description.inForce->underOldName ? ", under its old name" : ""));
    }
    output.writeEscaped(narrow(description.key) + "\n\n" + table.toString(output.getForm()));
}

void TextPrinter::showStores(const std::vector<StoreFacts>& stores) {
    TextTable table({Column::Right, Column::Left, Column::Left, Column::Left, Column::Right});
    table.addRow({"PRIORITY", "STORE", "WRITES", "ORIGIN", "KEYS"}, Style::Faint);
    for (const auto& store : stores) {
        table.addRow({std::to_string(store.priority), toOneLine(store.name), store.readOnly ? "read-only" : "writable",
                      store.local ? "local" : "not local", std::to_string(store.keyCount)});
    }
    output.writeEscaped(table.toString(output.getForm()));
}

void TextPrinter::showText(const std::string& /*kind*/, const std::string& text) {
    output.writeText(text.ends_with('\n') ? text : text + '\n');
}

void TextPrinter::showHealth(const HealthReport& report) {
    TextTable table({Column::Left, Column::Left, Column::Left, Column::Left});
    table.addRow({"", "WHAT", "PATH", "STATE"}, Style::Faint);
    for (const auto& item : report.items) {
        table.addRow({item.needsAttention ? "!" : "", item.area, toOneLine(item.path), toOneLine(item.state)},
                     item.needsAttention ? Style::Emphasis : Style::Plain);
    }
    output.writeEscaped(table.toString(output.getForm()));
}

void TextPrinter::showImport(const PolicyImport& import) {
    const auto linePrefix = [&](std::size_t line) { return import.file + ':' + std::to_string(line) + ": "; };
    std::map<std::size_t, std::string> taken;
    for (const auto& key : import.taken) {
        taken[key.line] = narrow(key.key) + ": " + describe(key);
    }
    for (const auto& value : import.values) {
        taken[value.line] = narrow(value.key) + (value.deleted ? ": deleted" : " = " + quote(value.value));
    }
    std::string text;
    for (const auto& [line, what] : taken) {
        text += toOneLine(linePrefix(line)) + what + '\n';
    }
    output.writeEscaped(text);
    for (const auto& [line, message] : import.listMessages()) {
        diagnostics.writeMessage(linePrefix(line) + message);
    }
}

void TextPrinter::showDump(const SettingsDump& dump) {
    output.writeEscaped(formatSettings(dump)); // the format escapes control characters itself
}

std::string TextPrinter::formatDump(const SettingsDump& dump) const {
    return formatSettings(dump);
}

void TextPrinter::showLoad(const LoadSummary& summary) {
    auto text = std::to_string(summary.countSet()) + (summary.dryRun ? " values would be set: " : " values set: ") +
                std::to_string(summary.added) + " added, " + std::to_string(summary.changed) + " changed, " +
                std::to_string(summary.unchanged) + " unchanged";
    if (summary.leftOut != 0) {
        text += "; " + std::to_string(summary.leftOut) + " left out";
    }
    diagnostics.writeMessage(text);
}

void TextPrinter::showComparison(const Comparison& comparison) {
    if (comparison.differences.empty()) {
        return;
    }
    auto text = "--- " + toOneLine(comparison.left) + "\n+++ " + toOneLine(comparison.right) + '\n';
    for (const auto& difference : comparison.differences) {
        if (difference.left) {
            text += '-' + formatSetting(*difference.left) + '\n';
        }
        if (difference.right) {
            text += '+' + formatSetting(*difference.right) + '\n';
        }
    }
    output.writeEscaped(text);
}

void TextPrinter::showBundle(const BundleSummary& bundle) {
    TextTable table({TextTable::Column::Left, TextTable::Column::Right, TextTable::Column::Left});
    table.addRow({"FILE", "BYTES", "CONTENTS"}, TextTable::Style::Faint);
    for (const auto& member : bundle.members) {
        table.addRow({toOneLine(member.name), std::to_string(member.bytes), toOneLine(member.contents)});
    }
    const auto title = bundle.file.empty() ? "Problem report of " + bundle.madeAt : bundle.file;
    std::string problems;
    for (const auto& problem : bundle.problems) {
        problems += "needs attention: " + toOneLine(problem.area + ' ' + problem.path + ": " + problem.state) + '\n';
    }
    output.writeEscaped(toOneLine(title) + "\n\n" + problems + (problems.empty() ? "" : "\n") +
                        table.toString(output.getForm()));
}

void TextPrinter::showNotification(const Notification& notification) {
    std::string companions;
    for (const auto& [key, value] : notification.companions) {
        companions += "  " + narrow(key) + "=" + quote(value);
    }
    output.writeEscaped(narrow(notification.key) + ": " + notification.property + " " + quote(notification.oldValue) +
                        " -> " + quote(notification.newValue) + "  [" + notification.thread + " thread]" + companions +
                        "\n");
}

void TextPrinter::showDone(const std::string& /*command*/, const std::string& message) {
    diagnostics.writeMessage(message);
}

void TextPrinter::showWarning(const std::string& message) {
    diagnostics.writeMessage("lumora-config: " + message);
}

void TextPrinter::showFailure(const std::string& /*command*/, const Failure& failure) {
    diagnostics.writeMessage(std::string("lumora-config: ") + failure.what());
}

bool TextPrinter::canPrint() const {
    return output.getError() == 0;
}

} // namespace lumora_config
