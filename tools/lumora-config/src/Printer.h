#pragma once

#include "Failure.h"
#include "Findings.h"

#include <optional>
#include <string>
#include <vector>

namespace lumora_config {

/// Shows what the commands found out. Secrets are hidden before they come here. Any thread: an observer may be told of
/// a change while the shell prints.
class Printer {
public:
    virtual ~Printer() = default;

    /// The answer to `get`: nothing when no store holds the key. `withOrigin` asks for the store too.
    virtual void showValue(const std::wstring& key, const std::optional<Reading>& reading, bool withOrigin) = 0;
    virtual void showExplanation(const Explanation& explanation) = 0;
    virtual void showList(const std::vector<ListedValue>& values) = 0;
    virtual void showStores(const std::vector<StoreFacts>& stores) = 0;
    /// A text of the service, "report" or "log".
    virtual void showText(const std::string& kind, const std::string& text) = 0;
    virtual void showHealth(const HealthReport& report) = 0;
    virtual void showImport(const PolicyImport& import) = 0;
    virtual void showNotification(const Notification& notification) = 0;
    /// A command that has no answer has done its work.
    virtual void showDone(const std::string& command, const std::string& message) = 0;
    /// One line about the profile, whatever the command.
    virtual void showWarning(const std::string& message) = 0;
    virtual void showFailure(const std::string& command, const Failure& failure) = 0;

    /// False once an answer could not be written. Nothing more is written then.
    virtual bool isHeard() const = 0;
};

} // namespace lumora_config
