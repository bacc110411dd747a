#pragma once

#include "Printer.h"

#include <mutex>
#include <ostream>

namespace lumora_config {

/// For people: aligned columns on `out`, messages on `messages`.
class TextPrinter final : public Printer {
public:
    /// The streams must outlive the printer. `useColour` is for a terminal.
    TextPrinter(std::ostream& out, std::ostream& messages, bool useColour);

    void showValue(const std::wstring& key, const std::optional<Reading>& reading, bool withOrigin) override;
    void showExplanation(const Explanation& explanation) override;
    void showList(const std::vector<ListedValue>& values) override;
    void showStores(const std::vector<StoreFacts>& stores) override;
    void showText(const std::string& kind, const std::string& text) override;
    void showImport(const PolicyImport& import) override;
    void showNotification(const Notification& notification) override;
    void showDone(const std::string& command, const std::string& message) override;
    void showFailure(const std::string& command, const Failure& failure) override;

private:
    void write(const std::string& text);

    std::mutex mutex; ///< Keeps lines whole.
    std::ostream& output;
    std::ostream& diagnostics;
    const bool coloured;
};

} // namespace lumora_config
