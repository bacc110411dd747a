#include "LoggedText.h"

#include <algorithm>

namespace fleet {

std::string toLoggedText(std::string_view text) {
    constexpr std::size_t room = 200;
    std::string logged(text.substr(0, room));
    std::ranges::replace_if(
        logged, [](char character) { return character < ' ' || character > '~'; }, '?');
    return text.size() > room ? logged + "..." : logged;
}

} // namespace fleet
