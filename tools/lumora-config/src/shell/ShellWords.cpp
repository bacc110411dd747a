#include "ShellWords.h"

#include "output/Failure.h"

#include <utility>

namespace lumora_config {

namespace {

/// Splits one line. After read(), the last word is unfinished unless a blank follows it.
class WordReader {
public:
    void read(std::string_view line) {
        for (std::size_t i = 0; i < line.size(); ++i) {
            const char c = line[i];
            if (quote == '\0' && (c == ' ' || c == '\t' || c == '\r')) {
                endWord();
                continue;
            }
            if (!inWord) {
                start = i;
            }
            inWord = true;
            if (c == '\\' && quote != '\'' && i + 1 < line.size()) {
                word += line[++i];
            } else if (quote != '\0' ? c == quote : c == '"' || c == '\'') {
                quote = quote == '\0' ? c : '\0';
            } else {
                word += c;
            }
        }
        if (!inWord) {
            start = line.size();
        }
    }

    void endWord() {
        if (inWord) {
            words.push_back(std::exchange(word, {}));
        }
        inWord = false;
    }

    bool quoteIsOpen() const { return quote != '\0'; }

    std::vector<std::string> words;
    std::string word;
    std::size_t start = 0;

private:
    bool inWord = false; // True inside an empty quoted word, too.
    char quote = '\0';
};

} // namespace

std::vector<std::string> splitWords(std::string_view line) {
    WordReader reader;
    reader.read(line);
    if (reader.quoteIsOpen()) {
        throw Failure(ExitCode::Usage, "a quote is not closed");
    }
    reader.endWord();
    return std::move(reader.words);
}

UnfinishedLine splitUnfinished(std::string_view line) {
    WordReader reader;
    reader.read(line);
    reader.words.push_back(std::move(reader.word));
    return {std::move(reader.words), reader.start};
}

std::string quoteWord(const std::string& word) {
    if (!word.empty() && !word.starts_with('#') && word.find_first_of(" \t\r\"'\\") == std::string::npos) {
        return word;
    }
    std::string quoted = "\"";
    for (const char c : word) {
        if (c == '"' || c == '\\') {
            quoted += '\\';
        }
        quoted += c;
    }
    return quoted + '"';
}

} // namespace lumora_config
