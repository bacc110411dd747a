#pragma once

#include "LineEditor.h"

#include <histedit.h>

#include <cwchar>

namespace lumora_config {

/// The line editor of libedit.
class EditlineEditor final : public LineEditor {
public:
    /// Standard input and standard error must be terminals.
    EditlineEditor(std::string promptText, Completer wordCompleter);

    std::optional<std::string> readLine() override;
    void addToHistory(const std::string& line) override;

private:
    template <auto release>
    struct Release {
        template <typename Handle>
        void operator()(Handle* handle) const {
            release(handle);
        }
    };

    static EditlineEditor& from(EditLine* editor);
    static char* getPrompt(EditLine* editor);
    /// Returns 0 at the end of the input and after a signal, otherwise 1.
    static int readCharacter(EditLine* editor, wchar_t* character);
    static unsigned char completeWord(EditLine* editor, int character);

    /// Prints the choices in columns.
    static void showChoices(const std::vector<std::string>& choices);

    std::string prompt;
    const Completer completer;
    const std::unique_ptr<History, Release<&history_end>> lines;
    const std::unique_ptr<EditLine, Release<&el_end>> editLine;
};

} // namespace lumora_config
