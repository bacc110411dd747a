#include "ShellCompletion.h"

#include "ShellWords.h"
#include "commands/CommandGrammar.h"

#include <algorithm>
#include <exception>

namespace lumora_config {

namespace {

Completion findCandidates(ShellTarget& target, const std::vector<std::string>& words) {
    Completion completion;
    withShellGrammar(
        [&](const std::string& command) { return target.canRun(command); },
        [&](const CLI::App& grammar) { completion = complete(CommandLineCursor(grammar, words), target.getNames()); });
    return completion;
}

char toLowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Returns the length of the longest common beginning, ignoring the case of ASCII letters, in whole characters.
std::size_t measureCommonStart(const std::vector<Candidate>& candidates) {
    const auto& first = candidates.front().text;
    auto length = first.size();
    for (const auto& candidate : candidates) {
        const auto ends = std::ranges::mismatch(first, candidate.text, {}, toLowerAscii, toLowerAscii);
        length = std::min(length, static_cast<std::size_t>(ends.in1 - first.begin()));
    }
    while (length < first.size() && length > 0 && (static_cast<unsigned char>(first[length]) & 0xC0U) == 0x80U) {
        --length;
    }
    return length;
}

LineCompletion toLineCompletion(const Completion& completion, const UnfinishedLine& line) {
    LineCompletion result;
    result.start = line.lastStart;
    result.isPath = completion.paths != Completion::Paths::None;
    const auto& candidates = completion.candidates;
    if (candidates.size() == 1) {
        result.text = quoteWord(candidates.front().text) + ' ';
        return result;
    }
    if (candidates.empty()) {
        return result;
    }
    const auto length = measureCommonStart(candidates);
    if (length > line.words.back().size()) {
        result.text = quoteWord(candidates.front().text.substr(0, length));
    }
    for (const auto& candidate : candidates) {
        result.choices.push_back(candidate.text);
    }
    return result;
}

} // namespace

LineCompletion completeShellLine(ShellTarget& target, const std::string& line) noexcept {
    try {
        const auto unfinished = splitUnfinished(line);
        return toLineCompletion(findCandidates(target, unfinished.words), unfinished);
    } catch (const std::exception&) {
        return {}; // A message would disturb the line.
    }
}

} // namespace lumora_config
