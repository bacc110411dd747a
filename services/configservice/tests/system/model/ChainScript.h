#pragma once

#include "Chain.h"
#include "ChainStep.h"

#include <span>
#include <string>
#include <vector>

namespace config_model {

/// Makes the calls of steps on a chain, and writes down everything that can be seen of them.
class ChainScript {
public:
    explicit ChainScript(Chain& subject);
    ChainScript(const ChainScript&) = delete;
    ChainScript& operator=(const ChainScript&) = delete;

    /// The answer, the announcements and what their observer could read meanwhile, what stores were asked to do, the
    /// background tasks, the log and the cached files.
    std::vector<std::string> perform(const ChainStep& step);
    /// Every key read in every way.
    std::vector<std::string> readEverything();

private:
    std::string call(const ChainStep& step);
    void heard(const std::wstring& key, const std::string& line);

    Chain& chain;
    std::vector<std::string> trace;
    const ChainStep* current = nullptr;
    std::size_t announcements = 0;
};

/// The steps on the model and on the product's manager. Empty when both do the same; else the steps up to the first
/// difference, and the difference. A TemporaryProfile must live.
std::string compareChains(std::span<const ChainStep> steps);

} // namespace config_model
