#pragma once

#include "LineEditor.h"

/// Creates the editor of the module that links libedit, as the constructor of EditlineEditor.
extern "C" void OpenEditlineEditor(const std::string& prompt, lumora_config::LineEditor::Completer completer,
                                   std::unique_ptr<lumora_config::LineEditor>& editor);
