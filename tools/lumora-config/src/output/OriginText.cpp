#include "OriginText.h"

namespace lumora_config {

std::string describe(const Origin& origin) {
    auto text = origin.how;
    text += origin.when.empty() ? "" : " at " + origin.when;
    text += text.empty() || origin.file.empty() ? "" : ", ";
    text += origin.file;
    return origin.line == 0 ? text : text + ':' + std::to_string(origin.line);
}

} // namespace lumora_config
