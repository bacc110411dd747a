#pragma once

#include "SharedText.h"

#include <cstddef>
#include <string>
#include <vector>

namespace ZelUnified {

/// Gives equal texts as one. For texts of which there are few, as the names of stores; it forgets none, and beyond a
/// limit it takes up no more. Has no lock.
class SharedTexts {
public:
    SharedText share(std::wstring text);

private:
    static constexpr std::size_t limit = 64;

    std::vector<SharedText> texts;
    SharedText last; ///< Mostly asked for again next.
};

} // namespace ZelUnified
