#pragma once

#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// The results of commands, ready to be printed. Secrets are already masked.
namespace lumora_config {

struct StoreFacts {
    std::string name;
    int priority = 0;
    bool readOnly = false;
    bool local = false;
    std::size_t keyCount = 0;
};

/// Where a value comes from, as far as it is known: a line of a file, or how and when the value arrived.
struct Origin {
    std::string file;
    std::size_t line = 0; ///< Zero if unknown. In an encrypted file, the line of the decrypted document.
    std::string how;      ///< "pushed by device management", ... Empty for a value that was read from a file.
    std::string when;     ///< ISO 8601, or empty.

    bool isKnown() const { return !file.empty() || !how.empty(); }
};

/// A value and its store.
struct Reading {
    std::wstring value;
    std::wstring storeName;
    bool underOldName = false;
    Origin origin{};
};

/// One name of the key that a store contains, with its value.
struct Holding {
    std::wstring name;
    std::wstring value;
    bool wins = false;
    Origin origin{};
};

struct Opinion {
    StoreFacts store;
    std::vector<Holding> holdings; ///< Empty if the store does not contain the key.
};

/// The properties of the service's record of the key.
struct RecordFacts {
    bool defined = false;
    bool overridden = false;
    std::wstring originalValue;
    std::wstring originalStoreName;
};

struct Explanation {
    std::wstring key; ///< In the spelling of the request.
    std::wstring newName;
    std::optional<std::wstring> oldName;
    bool isRequestedByOldName = false;
    bool sensitive = false;
    std::optional<Reading> inForce;
    std::vector<Opinion> opinions; ///< In chain order.
    std::optional<Reading> administrators;
    RecordFacts record;
};

struct ListedValue {
    std::wstring key;
    std::wstring value;
    std::wstring storeName;
    bool overridden = false;
};

/// A key in a policy file, and what the import does with it.
struct ImportedKey {
    std::size_t line = 0;
    std::wstring key; ///< Including its root.
    bool deleted = false;
    std::size_t valuesSet = 0;
    std::size_t valuesDeleted = 0;
};

struct RefusedLine {
    std::size_t line = 0;
    std::string reason; ///< Never quotes the file.
};

/// A line of a policy file that is valid, but probably not what its author meant.
struct PolicyRemark {
    enum class Kind {
        UnknownKey,  ///< The catalogue contains neither the key nor a similar one; the key of another service.
        MistypedKey, ///< The catalogue does not contain the key, but a similar one.
        Ineffective, ///< The line has no effect on the client, or not the one that it seems to have.
    };

    std::size_t line = 0;
    std::string text;
    Kind kind{};
};

/// A value in a policy file.
struct ImportedValue {
    std::size_t line = 0;
    std::wstring key; ///< "@" for the default value of a key of the registry.
    std::wstring value;
    bool deleted = false;
};

/// The result of the import of a policy file.
struct PolicyImport {
    std::string file; ///< In the spelling of the user.
    std::vector<ImportedKey> taken;
    std::vector<RefusedLine> refused;  ///< In order of lines.
    std::vector<PolicyRemark> remarks; ///< In order of lines.
    std::vector<ImportedValue> values; ///< Only of a dry run.
    bool dryRun = false;

    std::size_t countIneffective() const {
        return static_cast<std::size_t>(
            std::ranges::count(remarks, PolicyRemark::Kind::Ineffective, &PolicyRemark::kind));
    }
    /// Returns the messages about single lines, in order of lines.
    std::multimap<std::size_t, std::string> listMessages() const {
        std::multimap<std::size_t, std::string> messages;
        for (const auto& refusal : refused) {
            messages.emplace(refusal.line, "refused: " + refusal.reason);
        }
        for (const auto& remark : remarks) {
            messages.emplace(remark.line, remark.text);
        }
        return messages;
    }
};

/// One thing that `doctor` has examined.
struct HealthItem {
    std::string area; ///< "directory", "lock", "file", ...
    std::string path;
    std::string state;
    bool needsAttention = false;
};

struct HealthReport {
    std::vector<HealthItem> items;

    std::size_t countAttention() const {
        return static_cast<std::size_t>(std::ranges::count(items, true, &HealthItem::needsAttention));
    }
};

/// A change of one property of an observed record.
struct Notification {
    std::wstring key;
    std::string property;
    std::wstring oldValue;
    std::wstring newValue;
    std::string thread;
    std::vector<std::pair<std::wstring, std::wstring>> companions; ///< Other records at that moment: key and value.
};

} // namespace lumora_config
