#pragma once

#include "CallSteps.h"
#include "History.h"
#include "HistoryState.h"

#include <cstddef>
#include <string>
#include <vector>

namespace config_model {

/// Makes histories with the model alone, for tests of the checker: they have an order that explains them until a test
/// changes them.
class ModelHistory {
public:
    explicit ModelHistory(const std::vector<Call>& before);

    /// Starts a call and returns its number.
    std::size_t begin(std::size_t thread, const Call& call);
    /// Performs one step of the call. Returns false if that was the last one.
    bool step(std::size_t event);
    std::size_t run(std::size_t thread, const Call& call);
    /// Runs what is posted and returns the history.
    History finish();

private:
    void collect(std::size_t event);

    HistoryState state;
    History history;
    std::vector<std::vector<StepResult>> results;
    std::size_t time = 0;
};

} // namespace config_model
