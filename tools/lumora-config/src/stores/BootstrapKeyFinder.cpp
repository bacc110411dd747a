#include "BootstrapKeyFinder.h"

#include <kyr/StringUtils.h>

namespace lumora_config {

KeyPlaces findBootstrapKeys(std::string_view content, const std::string& file) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (content.starts_with(byteOrderMark)) {
        content.remove_prefix(byteOrderMark.size());
    }
    KeyPlaces places;
    for (std::size_t line = 1; !content.empty(); ++line) {
        const auto end = content.find('\n');
        const auto text = KyrCoreUtils::trim(content.substr(0, end));
        content.remove_prefix(end == std::string_view::npos ? content.size() : end + 1);
        if (!text.empty() && !text.starts_with('#')) {
            const auto key = KyrCoreUtils::trim(text.substr(0, text.find(':')));
            places.insert_or_assign(KyrCoreUtils::toWideString(key), FilePlace{file, line});
        }
    }
    return places;
}

} // namespace lumora_config
