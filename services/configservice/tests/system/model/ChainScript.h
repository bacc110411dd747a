#pragma once

#include "Chain.h"
#include "ChainStep.h"

#include <span>
#include <string>
#include <vector>

namespace config_model {

/// Calls the steps on a chain and records all observable effects.
class ChainScript {
public:
    explicit ChainScript(Chain& subject);
    ChainScript(const ChainScript&) = delete;
    ChainScript& operator=(const ChainScript&) = delete;

    /// Performs the step. Returns the result, the announcements and the values that their observer read meanwhile, the
    /// calls to stores, the background tasks, the log and the cached files.
    std::vector<std::string> perform(const ChainStep& step);
    /// Returns the value of every key, read in every way.
    std::vector<std::string> readEverything();

private:
    std::string call(const ChainStep& step);
    void heard(const std::wstring& key, const std::string& line);

    Chain& chain;
    std::vector<std::string> trace;
    const ChainStep* current = nullptr;
    std::size_t announcements = 0;
};

/// Performs the steps on the model and on the product's manager. Returns "" if both behave alike, otherwise the steps
/// up to the first difference, and the difference. A TemporaryProfile must exist.
std::string compareChains(std::span<const ChainStep> steps);

} // namespace config_model
