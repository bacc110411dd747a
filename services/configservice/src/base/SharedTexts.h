#pragma once

#include "SharedText.h"

#include <cstddef>
#include <string>
#include <vector>

namespace ZelUnified {

/// Returns one shared text for equal texts. Meant for small sets such as store names: it never removes a text, and
/// stops adding at a fixed limit. Has no lock.
///
/// With a string in each record instead, the service needs 14 % more memory.
class SharedTexts {
public:
    SharedText share(std::wstring text);

private:
    static constexpr std::size_t limit = 64;

    std::vector<SharedText> texts;
    SharedText last; ///< Usually the text of the next request, too.
};

} // namespace ZelUnified
