#pragma once

#include "BundleSummary.h"
#include "Failure.h"
#include "Findings.h"
#include "KeyFindings.h"
#include "SettingsDump.h"

#include <optional>
#include <string>
#include <vector>

namespace lumora_config {

/// Prints the results of commands. The caller masks secrets. Any thread: an observer may print a change while the shell
/// prints.
class Printer {
public:
    virtual ~Printer() = default;

    /// Prints the answer to `get`, or nothing if no store contains the key. If `withOrigin` is true, prints the store
    /// and the origin too.
    virtual void showValue(const std::wstring& key, const std::optional<Reading>& reading, bool withOrigin) = 0;
    /// Prints the answer to `get --default` if there is no value.
    virtual void showDefault(const std::wstring& key, const std::wstring& value) = 0;
    virtual void showExplanation(const Explanation& explanation) = 0;
    virtual void showList(const std::vector<ListedValue>& values) = 0;
    virtual void showKeys(const std::vector<KeyFacts>& keys) = 0;
    virtual void showDescription(const KeyDescription& description) = 0;
    virtual void showStores(const std::vector<StoreFacts>& stores) = 0;
    /// Prints a text of the service; `kind` is "report" or "log".
    virtual void showText(const std::string& kind, const std::string& text) = 0;
    virtual void showHealth(const HealthReport& report) = 0;
    virtual void showImport(const PolicyImport& import) = 0;
    virtual void showDump(const SettingsDump& dump) = 0;
    /// Returns the text that showDump() prints outside a terminal.
    virtual std::string formatDump(const SettingsDump& dump) const = 0;
    virtual void showLoad(const LoadSummary& summary) = 0;
    virtual void showComparison(const Comparison& comparison) = 0;
    virtual void showBundle(const BundleSummary& bundle) = 0;
    virtual void showNotification(const Notification& notification) = 0;
    /// Reports that a command without a result is done.
    virtual void showDone(const std::string& command, const std::string& message) = 0;
    /// Prints one line about the profile; not related to the command.
    virtual void showWarning(const std::string& message) = 0;
    virtual void showFailure(const std::string& command, const Failure& failure) = 0;

    /// Returns true if showValue() prints the origin without being asked for it.
    virtual bool alwaysShowsOrigin() const = 0;

    /// Returns false once an answer could not be written; nothing more is written then.
    virtual bool canPrint() const = 0;
};

} // namespace lumora_config
