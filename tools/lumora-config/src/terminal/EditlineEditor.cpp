#include "EditlineEditor.h"

#include "EditlineModule.h"
#include "output/EscapedText.h"

#include <kyr/EndSignals.h>
#include <kyr/StandardStreams.h>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <new>
#include <string_view>
#include <utility>

namespace lumora_config {

using KyrCoreUtils::EndSignals;
using KyrCoreUtils::StandardStreams;

namespace {

constexpr int historySize = 1000;
constexpr std::size_t gap = 2; ///< Between two columns of choices.
constexpr wchar_t replacementCharacter = L'\xFFFD';

/// Makes UTF-8 the encoding of the calling thread, since libedit uses that of the locale. The rest of the program does
/// not depend on the locale.
class Utf8Locale {
public:
    Utf8Locale() : locale(newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)) {
        if (locale != nullptr) {
            previous = uselocale(locale);
        }
    }
    ~Utf8Locale() {
        if (locale != nullptr) {
            uselocale(previous);
            freelocale(locale);
        }
    }
    Utf8Locale(const Utf8Locale&) = delete;
    Utf8Locale& operator=(const Utf8Locale&) = delete;

private:
    locale_t locale;
    locale_t previous = nullptr;
};

std::size_t countCharacters(std::string_view text) {
    return static_cast<std::size_t>(
        std::ranges::count_if(text, [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}

} // namespace

EditlineEditor::EditlineEditor(std::string promptText, Completer wordCompleter)
    : prompt(std::move(promptText)), completer(std::move(wordCompleter)), lines(history_init()), editLine([] {
          const Utf8Locale locale;
          return el_init("lumora-config", stdin, stderr, stderr);
      }()) {
    if (!lines || !editLine) {
        throw std::bad_alloc();
    }
    const Utf8Locale locale;
    auto* const editor = editLine.get();
    HistEvent event{};
    history(lines.get(), &event, H_SETSIZE, historySize);
    el_set(editor, EL_CLIENTDATA, static_cast<void*>(this));
    el_set(editor, EL_PROMPT, &EditlineEditor::getPrompt);
    el_set(editor, EL_EDITOR, "emacs");
    el_set(editor, EL_SIGNAL, 0); // EndSignals handles the signals
    // The interrupt key must not discard input: a read that has just been announced would wait for more.
    el_set(editor, EL_SETTY, "-d", "+noflsh", nullptr);
    el_set(editor, EL_GETCFN, &EditlineEditor::readCharacter);
    el_set(editor, EL_HIST, &history, lines.get());
    // The wide call, because the narrow one leaks copies of its texts.
    el_wset(editor, EL_ADDFN, L"lumora-complete", L"Complete the word", &EditlineEditor::completeWord);
    el_set(editor, EL_BIND, "^I", "lumora-complete", nullptr);
}

std::optional<std::string> EditlineEditor::readLine() {
    const Utf8Locale locale;
    el_resize(editLine.get()); // the size may have changed since the last line
    // Before the prompt is shown: libedit itself does it afterwards, and keys typed in between would have other
    // effects.
    el_set(editLine.get(), EL_PREP_TERM, 1);
    int length = 0;
    const char* const text = el_gets(editLine.get(), &length);
    if (text == nullptr || EndSignals::getReceived() != 0) {
        StandardStreams::write(StandardStreams::Stream::Error, "\n");
        return std::nullopt;
    }
    std::string line(text);
    if (line.ends_with('\n')) {
        line.pop_back();
    }
    return line;
}

void EditlineEditor::addToHistory(const std::string& line) {
    const Utf8Locale locale;
    HistEvent event{};
    history(lines.get(), &event, H_ENTER, line.c_str());
}

EditlineEditor& EditlineEditor::from(EditLine* editor) {
    void* self = nullptr;
    el_get(editor, EL_CLIENTDATA, &self);
    return *static_cast<EditlineEditor*>(self);
}

char* EditlineEditor::getPrompt(EditLine* editor) {
    return from(editor).prompt.data();
}

int EditlineEditor::readCharacter(EditLine* /*editor*/, wchar_t* character) {
    std::mbstate_t state{};
    char byte = '\0';
    // One byte at a time: what follows the line belongs to the next one, which a command may read.
    while (EndSignals::readInput(&byte, 1) == 1) {
        const auto length = std::mbrtowc(character, &byte, 1, &state);
        if (length == static_cast<std::size_t>(-2)) {
            continue; // the character has more bytes
        }
        if (length == static_cast<std::size_t>(-1)) {
            *character = replacementCharacter;
        }
        return 1;
    }
    return 0;
}

unsigned char EditlineEditor::completeWord(EditLine* editor, int character) {
    const auto* const info = el_line(editor);
    const std::string line(info->buffer, info->cursor);
    const auto completion = from(editor).completer(line);
    if (completion.text) {
        el_deletestr(editor, static_cast<int>(countCharacters(std::string_view(line).substr(completion.start))));
        el_insertstr(editor, completion.text->c_str());
        return CC_REFRESH;
    }
    if (completion.isPath) {
        return _el_fn_complete(editor, character);
    }
    if (completion.choices.empty()) {
        return CC_REFRESH_BEEP;
    }
    showChoices(completion.choices);
    return CC_REDISPLAY;
}

void EditlineEditor::showChoices(const std::vector<std::string>& choices) {
    std::vector<std::string> cells;
    std::size_t width = 0;
    for (const auto& choice : choices) {
        cells.push_back(toOneLine(choice));
        width = std::max(width, countCharacters(cells.back()) + gap);
    }
    const auto inRow = std::max<std::size_t>(1, StandardStreams::getColumns(StandardStreams::Stream::Error) / width);
    std::string text;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        text += i % inRow == 0 ? std::string("\n") : std::string(width - countCharacters(cells[i - 1]), ' ');
        text += cells[i];
    }
    text += '\n';
    StandardStreams::write(StandardStreams::Stream::Error, text);
}

} // namespace lumora_config

void OpenEditlineEditor(const std::string& prompt, lumora_config::LineEditor::Completer completer,
                        std::unique_ptr<lumora_config::LineEditor>& editor) {
    editor = std::make_unique<lumora_config::EditlineEditor>(prompt, std::move(completer));
}
