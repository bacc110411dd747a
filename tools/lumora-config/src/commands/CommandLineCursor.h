#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace lumora_config {

/// Follows the words of an unfinished command line through the grammar and determines what the last word may be. Never
/// fails: a word that the grammar does not know is skipped. Holds pointers into the grammar.
class CommandLineCursor {
public:
    /// `words` are the arguments without the name of the program. The last one is the word at the cursor; it may be
    /// empty. A shell may pass "--option=value" as one word or as three, and "NAME=value" too.
    CommandLineCursor(const CLI::App& grammar, const std::vector<std::string>& words);

    const CLI::App& getGrammar() const { return *root; }
    /// Returns the command that the words name, or the whole grammar.
    const CLI::App& getCommand() const { return *command; }
    /// Returns the option or the positional argument whose value the last word is, or null if the last word is the name
    /// of a command or of an option, or superfluous.
    const CLI::Option* getExpected() const { return expected; }
    /// Returns the part of the last word that is to be completed, and the part before it: "--store=".
    const std::string& getText() const { return text; }
    const std::string& getLead() const { return lead; }
    /// Returns true if the last word may be the name of an option.
    bool mayBeOption() const { return !optionValue && !onlyPositionals; }
    /// Returns the options that may be given here: those of the command and the common ones, without those that are
    /// given already or excluded by one that is given.
    std::vector<const CLI::Option*> getOpenOptions() const;
    /// Returns the value that was given for an option ("--profile") or a positional argument ("KEY"), or an empty text.
    std::string getValue(const std::string& name) const;
    /// Returns true if the option was given.
    bool isGiven(const std::string& name) const;

private:
    void follow(const std::string& word);
    void followOption(const std::string& word);
    void finish(const std::string& word);
    const CLI::Option* findOption(const std::string& name) const;
    const CLI::Option* findPositional() const;
    /// Returns true if the value of the last option is the first part of a pair such as NAME=LIBRARY.
    bool isFirstOfPair() const;

    const CLI::App* root;
    const CLI::App* command;
    const CLI::Option* waiting = nullptr;  ///< The option whose value is the next word.
    const CLI::Option* answered = nullptr; ///< The option whose value is the last word.
    std::string pairStart;                 ///< The part of the value before the next word: "NAME=".
    const CLI::Option* expected = nullptr;
    bool optionValue = false;
    bool onlyPositionals = false; ///< True after "--".
    std::size_t positionals = 0;
    std::map<const CLI::Option*, std::string> given;
    std::string text;
    std::string lead;
};

} // namespace lumora_config
