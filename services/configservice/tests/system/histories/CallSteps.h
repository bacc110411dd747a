#pragma once

#include "Call.h"
#include "HistoryState.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace config_model {

/// What a step of a call returned to the call.
struct StepResult {
    bool yes = false;
    std::wstring text{};
    Pairs pairs{};
};

/// Performs a call one step at a time. A step is what the product does under one lock, or with one file; steps of other
/// calls may come between two steps.
///
/// For each step the call begins anew: the earlier steps return what they returned, the next one runs on the state, and
/// the ones behind it do nothing. So a call needs no other memory than the results of its steps.
class CallSteps {
public:
    /// `number` identifies the call among those that hold the lock of the life. `past` has the results of its earlier
    /// steps.
    CallSteps(HistoryState& sequentialState, std::size_t number, bool isServicesThread, std::vector<StepResult>& past)
        : state(sequentialState), event(number), onServicesThread(isServicesThread), results(past) {}

    /// Runs the next step. Returns false if it cannot run in this state.
    bool runNext(const Call& call);
    /// Returns true if the call has no further step.
    bool isFinished() const { return !hasMore; }
    /// The answer of a finished call.
    const std::string& getAnswer() const { return answer; }

    /// Runs the whole call.
    static std::string runAll(HistoryState& state, const Call& call);

private:
    template <class Work>
    StepResult step(const Work& work);
    template <class Work>
    void change(const Work& work);
    template <class Work>
    bool test(const Work& work);
    template <class Work>
    std::wstring read(const Work& work);

    std::string perform(const Call& call);
    std::string performLife(const Call& call);
    std::string addStore(const StoreShape& shape);
    void cacheStore(const StoreShape& shape);
    bool removeStore(const std::string& name);
    void removeAllCachedStores();
    void removeValuesIfPolicySet();
    void deriveFlags();
    void setMdmConfig(const Pairs& pairs);
    bool provision(const std::wstring& url);
    bool resetProvisioning();
    void setKeySensitive(const std::wstring& key);
    std::string report();

    void start();
    void stop();
    void refresh();
    void rebuild();
    void resetAllData();
    void powerDown();
    void addMemoryStore();
    void addUserStore();
    void initialiseCachedStores();
    void addCopy(const std::string& name, int priority);
    std::vector<std::string> listCachedFiles();

    void runPosted(std::size_t position);
    std::string runBackground();

    void acquireLife();
    void releaseLife() { state.lifeHolder.reset(); }
    void block() { isBlocked = true; }

    HistoryState& state;
    const std::size_t event;
    const bool onServicesThread;
    std::vector<StepResult>& results;
    std::size_t position = 0; ///< Of the step that the call asks for.
    bool hasRun = false;
    bool hasMore = false;
    bool isBlocked = false;
    std::string answer;
};

/// Returns the state of a service on a new profile that was constructed and started and has made these calls, with all
/// their tasks run.
HistoryState makeStartedState(const Pairs& policy, const std::vector<Call>& before);
/// Returns the records and the lookup of each key.
std::vector<std::string> describeEnd(HistoryState& state);
std::string describeLookup(const std::wstring& key, const Reading& reading);

} // namespace config_model
