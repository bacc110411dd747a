#pragma once

#include "Call.h"
#include "ChainModel.h"
#include "ServiceRecords.h"

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace config_model {

/// The sequential state of the service between two steps: the chain, the records, the posted tasks that have not run,
/// the files and the life of the feature set. A copy is independent, so that a search can return to it.
class HistoryState {
public:
    /// A task posted to the services dispatcher, by its effect.
    struct Task {
        enum class Kind { Change, Fire, MakeSensitive, RemoveNonLocalStores };
        Kind kind = Kind::Change;
        Change change{}; ///< For the other kinds only the key.
        bool outdated = false;

        static Task ofKey(Kind kind, const std::wstring& key);
        /// The name under which the product posts it.
        std::string getName() const;
        /// True for the tasks that are posted with the chain locked, and therefore in the order of its changes.
        bool isOfChain() const { return kind == Kind::Change || kind == Kind::Fire; }
    };

    /// The state of a service that is constructed on a new profile with this policy, and started.
    explicit HistoryState(const Pairs& administratorsPolicy);
    HistoryState(const HistoryState& other);
    HistoryState& operator=(const HistoryState&) = delete;

    /// Selects the thread of the next step: announcements on the services thread reach the records at once.
    void enter(bool isServicesThread) { onServicesThread = isServicesThread; }
    /// Returns what the last step posted, or fired.
    std::vector<Task> takePosted() { return std::exchange(posted, {}); }
    std::vector<std::string> takeFired() { return std::exchange(fired, {}); }

    void post(Task task) { posted.push_back(std::move(task)); }
    void run(const Task& task);
    void makeRecordSensitive(const std::wstring& key) { sensitiveRecords.push_back(toSmallLetters(key)); }
    bool isRecordSensitive(const std::wstring& key) const;

    std::wstring valueOf(const std::wstring& key) { return chain.getValue(key, false, "").value; }
    /// Returns the text of the state: equal texts mean equal states.
    std::string describe() const;

    ChainModel chain;
    ServiceRecords records;
    std::map<std::size_t, Task> queue; ///< By the position in the history's queue.
    Pairs policy;
    std::optional<Pairs> userFile;
    std::map<std::string, Pairs> copies; ///< The last content of each cached file; the chain lists those that exist.
    bool started = false;
    std::size_t backgroundRun = 0;         ///< The number of background tasks that have run.
    std::optional<std::size_t> lifeHolder; ///< The event that holds the lock of the life.
    bool stopRan = false;                  ///< The task of a stop has run and the stop has not gone on.
    bool writingUserFile = false;          ///< The background thread is between reading the store and writing its file.

private:
    void connect();

    std::vector<std::wstring> sensitiveRecords;
    bool onServicesThread = true;
    std::vector<Task> posted;
    std::vector<std::string> fired;
};

/// The keys whose records are observed and compared. No record has an old name.
extern const std::vector<std::wstring> watchedKeys;
/// What the installation ships.
extern const Pairs shippedDefaults;

std::string describe(const RecordView& record);

} // namespace config_model
