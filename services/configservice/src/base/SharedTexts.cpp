#include "SharedTexts.h"

#include <algorithm>
#include <utility>

namespace ZelUnified {

SharedText SharedTexts::share(std::wstring text) {
    const auto known = std::find(texts.begin(), texts.end(), text);
    if (known != texts.end()) {
        return *known;
    }
    SharedText added(std::move(text));
    if (texts.size() < limit) {
        texts.push_back(added);
    }
    return added;
}

} // namespace ZelUnified
