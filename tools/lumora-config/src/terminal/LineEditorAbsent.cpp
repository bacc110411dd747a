#include "LineEditor.h"

namespace lumora_config {

std::unique_ptr<LineEditor> LineEditor::create(const std::string& /*prompt*/, Completer /*completer*/) {
    return nullptr;
}

} // namespace lumora_config
