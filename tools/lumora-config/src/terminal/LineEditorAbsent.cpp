#include "LineEditor.h"

namespace lumora_config {

std::unique_ptr<LineEditor> LineEditor::create(const std::string& /*prompt*/, Completer /*completer*/,
                                               const std::string& /*pluginDirectory*/) {
    return nullptr;
}

} // namespace lumora_config
