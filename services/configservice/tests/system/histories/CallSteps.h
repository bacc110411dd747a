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
/// For each step the call runs from its beginning: the earlier steps return what they returned, the next one runs on
/// the state, and later steps do nothing. So a call needs no other memory than the results of its steps.
class CallSteps {
public:
    /// `number` identifies the call that holds the lifecycle lock. `past` has the results of its earlier steps.
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

    static constexpr const char* urlStore = "UrlProvisioningConfigStore";
    static std::string copyNameOf(const std::string& storeName);
    /// Returns the pairs as they are read from a document, with keys in lower case.
    static Pairs readBack(const Pairs& pairs);

    std::string perform(const Call& call);
    std::string performLifecycle(const Call& call);
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
    void emptyUserStoresWithQueuedWrites();
    void powerDown();
    void addMemoryStore();
    void addUserStore();
    void initialiseCachedStores();
    void addCopy(const std::string& name, int priority);
    std::vector<std::string> listCachedFiles();

    void runPosted(std::size_t position);
    std::string runBackground();

    void acquireLifecycleLock();
    void releaseLifecycleLock() { state.data.lifecycleHolder.reset(); }
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

template <class Work>
StepResult CallSteps::step(const Work& work) {
    if (position < results.size()) {
        return results[position++];
    }
    if (hasRun) {
        hasMore = true;
        return {};
    }
    hasRun = true;
    ++position;
    results.push_back(work());
    return results.back();
}

template <class Work>
void CallSteps::change(const Work& work) {
    step([&] {
        work();
        return StepResult();
    });
}

template <class Work>
bool CallSteps::test(const Work& work) {
    return step([&] { return StepResult{.yes = work()}; }).yes;
}

template <class Work>
std::wstring CallSteps::read(const Work& work) {
    return step([&] { return StepResult{.text = work()}; }).text;
}

} // namespace config_model
