#pragma once

#include "Call.h"
#include "ChainModel.h"
#include "ServiceRecords.h"
#include "StateHash.h"

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace config_model {

/// The sequential state of the service between two steps: the chain, the records, the posted tasks that have not run,
/// the files and the lifecycle of the feature set. A copy is independent, so that a search can return to it.
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

    struct Data {
        ChainModel chain;
        ServiceRecords records;
        std::vector<std::wstring> sensitiveRecords;
        std::map<std::size_t, Task> queue; ///< By the position in the history's queue.
        Pairs policy;
        std::optional<Pairs> userFile;
        /// The last content of each cached file. The chain lists those that exist.
        std::map<std::string, Pairs> copies;
        bool started = false;
        std::size_t backgroundRun = 0;              ///< The number of background tasks that have run.
        std::optional<std::size_t> lifecycleHolder; ///< The event that holds the lifecycle lock.
        bool stopRan = false;                       ///< The task of a stop has run and the stop has not gone on.
        bool writingUserFile = false; ///< The background thread is between reading the store and writing its file.
        // Of the current or last step.
        bool onServicesThread = true;
        std::vector<Task> posted;
        std::vector<std::string> fired;
    };

    /// The state of a service that is constructed on a new profile with this policy, and started.
    explicit HistoryState(const Pairs& administratorsPolicy);
    HistoryState(const HistoryState& other) : data(other.data) { connect(); }
    HistoryState& operator=(const HistoryState&) = delete;

    /// Selects the thread of the next step: announcements on the services thread reach the records at once.
    void enter(bool isServicesThread) { data.onServicesThread = isServicesThread; }
    /// Returns what the last step posted, or fired.
    std::vector<Task> takePosted() { return std::exchange(data.posted, {}); }
    std::vector<std::string> takeFired() { return std::exchange(data.fired, {}); }

    void post(Task task) { data.posted.push_back(std::move(task)); }
    void run(const Task& task);
    void makeRecordSensitive(const std::wstring& key) { data.sensitiveRecords.push_back(toSmallLetters(key)); }
    bool isRecordSensitive(const std::wstring& key) const;

    std::wstring valueOf(const std::wstring& key) { return data.chain.getValue(key, false, "").value; }
    void addTo(StateHash& hash) const;

    /// The whole state, so that a copy contains all of it. The constructors connect the callbacks of its chain and
    /// records to this object.
    Data data;

private:
    void connect();
    void addChainTo(StateHash& hash) const;
};

/// The keys whose records are observed and compared. None of them is an old name.
extern const std::vector<std::wstring> watchedKeys;
/// What the installation ships.
extern const Pairs shippedDefaults;

} // namespace config_model
