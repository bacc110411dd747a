#include "TextPrinter.h"

#include "TextTable.h"

#include <kyr/StringUtils.h>

#include <utility>

namespace lumora_config {

using Align = TextTable::Align;
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
    if (!explanation.earlierName) {
        return text;
    }
    const auto other = explanation.askedByEarlierName ? explanation.currentName : *explanation.earlierName;
    return text + (explanation.askedByEarlierName ? ", the old name of " : ", once named ") + narrow(other);
}

std::string describe(const std::optional<Reading>& reading, const Explanation& explanation) {
    if (!reading) {
        return "none";
    }
    auto text = quote(reading->value) + " from " + narrow(reading->storeName);
    if (explanation.earlierName) {
        text += reading->underEarlierName ? ", under the old name " + narrow(*explanation.earlierName)
                                          : ", under the new name " + narrow(explanation.currentName);
    }
    return text;
}

void addOpinion(TextTable& table, const Opinion& opinion) {
    auto priority = std::to_string(opinion.store.priority);
    auto store = toOneLine(opinion.store.name);
    if (opinion.holdings.empty()) {
        table.addRow({"", priority, store, "-", ""}, Style::Faint);
        return;
    }
    for (const auto& holding : opinion.holdings) {
        table.addRow({holding.wins ? ">" : "", std::exchange(priority, ""), std::exchange(store, ""),
                      narrow(holding.name), quote(holding.value)},
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

TextPrinter::TextPrinter(std::ostream& out, std::ostream& messages, bool useColour)
    : output(out), diagnostics(messages), coloured(useColour) {}

void TextPrinter::showValue(const std::wstring& /*key*/, const std::optional<Reading>& reading, bool withOrigin) {
    if (!reading) {
        return;
    }
    auto text = KyrCoreUtils::toString(reading->value);
    if (withOrigin) {
        text += "  (" + narrow(reading->storeName) + (reading->underEarlierName ? ", under its old name)" : ")");
    }
    write(text + '\n');
}

void TextPrinter::showExplanation(const Explanation& explanation) {
    TextTable opinions({Align::Left, Align::Right, Align::Left, Align::Left, Align::Left});
    opinions.addRow({"", "PRIORITY", "STORE", "NAME", "VALUE"}, Style::Faint);
    for (const auto& opinion : explanation.opinions) {
        addOpinion(opinions, opinion);
    }
    TextTable summary({Align::Left, Align::Left});
    summary.addRow({"in force", describe(explanation.inForce, explanation)});
    summary.addRow({"administrator's", describe(explanation.administrators, explanation)});
    summary.addRow({"overridden", explanation.record.overridden ? "yes" : "no"});
    write(nameOfKey(explanation) + "\n\n" + opinions.toString(coloured) + '\n' + summary.toString(coloured));
}

void TextPrinter::showList(const std::vector<ListedValue>& values) {
    TextTable table({Align::Left, Align::Left, Align::Left, Align::Left});
    table.addRow({"", "KEY", "VALUE", "STORE"}, Style::Faint);
    for (const auto& listed : values) {
        table.addRow({listed.overridden ? "*" : "", narrow(listed.key), quote(listed.value), narrow(listed.storeName)},
                     listed.overridden ? Style::Emphasis : Style::Plain);
    }
    write(table.toString(coloured));
}

void TextPrinter::showStores(const std::vector<StoreFacts>& stores) {
    TextTable table({Align::Right, Align::Left, Align::Left, Align::Left, Align::Right});
    table.addRow({"PRIORITY", "STORE", "WRITES", "ORIGIN", "KEYS"}, Style::Faint);
    for (const auto& store : stores) {
        table.addRow({std::to_string(store.priority), toOneLine(store.name), store.readOnly ? "read-only" : "writable",
                      store.local ? "local" : "not local", std::to_string(store.keyCount)});
    }
    write(table.toString(coloured));
}

void TextPrinter::showText(const std::string& /*kind*/, const std::string& text) {
    write(text.ends_with('\n') ? text : text + '\n');
}

void TextPrinter::showImport(const PolicyImport& import) {
    const auto place = [&](std::size_t line) { return toOneLine(import.file) + ':' + std::to_string(line) + ": "; };
    std::string taken;
    for (const auto& key : import.taken) {
        taken += place(key.line) + narrow(key.key) + ": " + describe(key) + '\n';
    }
    write(taken);
    const std::lock_guard lock(mutex);
    for (const auto& refusal : import.refused) {
        diagnostics << place(refusal.line) << "refused: " << refusal.reason << '\n';
    }
    diagnostics << std::flush;
}

void TextPrinter::showNotification(const Notification& notification) {
    std::string companions;
    for (const auto& [key, value] : notification.companions) {
        companions += "  " + narrow(key) + "=" + quote(value);
    }
    write(narrow(notification.key) + ": " + notification.property + " " + quote(notification.oldValue) + " -> " +
          quote(notification.newValue) + "  [" + notification.thread + " thread]" + companions + "\n");
}

void TextPrinter::showDone(const std::string& /*command*/, const std::string& message) {
    const std::lock_guard lock(mutex);
    diagnostics << toOneLine(message) << '\n' << std::flush;
}

void TextPrinter::showFailure(const std::string& /*command*/, const Failure& failure) {
    const std::lock_guard lock(mutex);
    diagnostics << "lumora-config: " << failure.what() << '\n' << std::flush;
}

void TextPrinter::write(const std::string& text) {
    const std::lock_guard lock(mutex);
    output << text << std::flush;
}

} // namespace lumora_config
