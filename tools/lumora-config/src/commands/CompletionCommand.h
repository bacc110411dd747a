#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lumora_config {

/// Returns the answer to `lumora-config complete -- WORDS...`, which the scripts of the shells call: the words that may
/// stand at the place of the last one, see Completion::toString(). Reads the profile that the words name but never
/// changes it. Returns fewer words on any failure; never throws.
std::string completeCommandLine(const std::vector<std::string>& words) noexcept;

/// Returns the completion script for "bash", "fish" or "zsh". Throws Failure (Usage) for another shell.
std::string_view getCompletionScript(std::string_view shell);

/// The embedded files of the folder "completions".
std::string_view getBashCompletion();
std::string_view getFishCompletion();
std::string_view getZshCompletion();

} // namespace lumora_config
