#include "LineEditor.h"

#include "EditlineModule.h"
#include "host/ProgramModule.h"

#include <kyr/ProcessUtils.h>
#include <kyr/StandardStreams.h>

#include <cstdlib>
#include <string_view>
#include <utility>

namespace lumora_config {

using KyrCoreUtils::StandardStreams;

namespace {

bool canMoveCursor() {
    const char* const terminal = std::getenv("TERM");
    return terminal != nullptr && *terminal != '\0' && std::string_view(terminal) != "dumb";
}

} // namespace

std::unique_ptr<LineEditor> LineEditor::create(const std::string& prompt, Completer completer,
                                               const std::string& pluginDirectory) {
    if (!KyrCoreUtils::ProcessUtils::isInputTerminal() ||
        !StandardStreams::isTerminal(StandardStreams::Stream::Error) || !canMoveCursor()) {
        return nullptr;
    }
    std::unique_ptr<LineEditor> editor;
    findInModule<decltype(&OpenEditlineEditor)>(LUMORA_MODULE, "OpenEditlineEditor",
                                                pluginDirectory)(prompt, std::move(completer), editor);
    return editor;
}

} // namespace lumora_config
