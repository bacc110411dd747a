#pragma once

#include "Output.h"
#include "Printer.h"

namespace lumora_config {

/// Prints text for people: aligned columns on `out`, messages on `messages`.
class TextPrinter final : public Printer {
public:
    /// The outputs must outlive the printer.
    TextPrinter(Output& out, Output& messages);

    void showValue(const std::wstring& key, const std::optional<Reading>& reading, bool withOrigin) override;
    void showDefault(const std::wstring& key, const std::wstring& value) override;
    void showExplanation(const Explanation& explanation) override;
    void showList(const std::vector<ListedValue>& values) override;
    void showKeys(const std::vector<KeyFacts>& keys) override;
    void showDescription(const KeyDescription& description) override;
    void showStores(const std::vector<StoreFacts>& stores) override;
    void showText(const std::string& kind, const std::string& text) override;
    void showHealth(const HealthReport& report) override;
    void showImport(const PolicyImport& import) override;
    void showDump(const SettingsDump& dump) override;
    std::string formatDump(const SettingsDump& dump) const override;
    void showLoad(const LoadSummary& summary) override;
    void showComparison(const Comparison& comparison) override;
    void showBundle(const BundleSummary& bundle) override;
    void showNotification(const Notification& notification) override;
    void showDone(const std::string& command, const std::string& message) override;
    void showWarning(const std::string& message) override;
    void showFailure(const std::string& command, const Failure& failure) override;
    bool alwaysShowsOrigin() const override { return false; }
    bool canPrint() const override;

private:
    Output& output;
    Output& diagnostics;
};

} // namespace lumora_config
