// Any file that is read gives the same keys after it is written and read again, and no keys after all of them are
// removed.
#include "Require.h"

#include <registry/RegistryTextFile.h>

#include <algorithm>

using namespace zel::registry;
using fuzz::require;

namespace {

bool isSame(const RegistryTextSection& a, const RegistryTextSection& b) {
    return a.deletion == b.deletion && a.path == b.path && a.entries.size() == b.entries.size() &&
           std::equal(a.entries.begin(), a.entries.end(), b.entries.begin(),
                      [](const auto& x, const auto& y) { return x.deletion == y.deletion && x.value == y.value; });
}

} // namespace

// libFuzzer prescribes the name.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) { // NOLINT(readability-identifier-naming)
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const auto text = parseRegistryText(bytes, HKEY_CURRENT_USER);
    const auto again = parseRegistryText(formatRegistryText(text.sections), HKEY_CURRENT_USER);
    require(again.refusals.empty() && again.sections.size() == text.sections.size());
    require(std::equal(text.sections.begin(), text.sections.end(), again.sections.begin(), isSame));
    const auto rest = cutRegistryText(bytes, text.sections);
    require(parseRegistryText(rest, HKEY_CURRENT_USER).sections.empty());
    return 0;
}
