#include "SharedTexts.h"

#include <algorithm>
#include <utility>

namespace ZelUnified {

SharedText SharedTexts::share(std::wstring text) {
    if (last == text) { // all keys of an arriving store have the same store name
        return last;
    }
    const auto known = std::find(texts.begin(), texts.end(), text);
    if (known != texts.end()) {
        last = *known;
        return last;
    }
    last = SharedText(std::move(text));
    if (texts.size() < limit) {
        texts.push_back(last);
    }
    return last;
}

} // namespace ZelUnified
