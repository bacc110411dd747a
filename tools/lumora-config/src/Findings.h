#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// What the commands found out, ready to be printed: secrets are hidden in these already.
namespace lumora_config {

struct StoreFacts {
    std::string name;
    int priority = 0;
    bool readOnly = false;
    bool local = false;
    std::size_t keyCount = 0;
};

/// A value and where it came from.
struct Reading {
    std::wstring value;
    std::wstring storeName;
    bool underEarlierName = false;
};

/// One name of the key that a store holds.
struct Holding {
    std::wstring name;
    std::wstring value;
    bool wins = false;
};

struct Opinion {
    StoreFacts store;
    std::vector<Holding> holdings; ///< Empty: the store says nothing of the key.
};

/// What the service's record of the key says.
struct RecordFacts {
    bool defined = false;
    bool overridden = false;
    std::wstring originalValue;
    std::wstring originalStoreName;
};

struct Explanation {
    std::wstring key; ///< As asked.
    std::wstring currentName;
    std::optional<std::wstring> earlierName;
    bool askedByEarlierName = false;
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

/// A key that a policy file names, and what happens to it.
struct ImportedKey {
    std::size_t line = 0;
    std::wstring key; ///< With its root.
    bool deleted = false;
    std::size_t valuesSet = 0;
    std::size_t valuesDeleted = 0;
};

struct RefusedLine {
    std::size_t line = 0;
    std::string reason; ///< Never quotes the file.
};

/// What became of a policy file.
struct PolicyImport {
    std::string file; ///< As the user named it.
    std::vector<ImportedKey> taken;
    std::vector<RefusedLine> refused; ///< By line.
};

/// One thing that `doctor` has looked at.
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

/// One property of an observed record has changed.
struct Notification {
    std::wstring key;
    std::string property;
    std::wstring oldValue;
    std::wstring newValue;
    std::string thread;
    std::vector<std::pair<std::wstring, std::wstring>> companions; ///< Other records at that moment: key and value.
};

} // namespace lumora_config
