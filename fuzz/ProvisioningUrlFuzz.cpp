// A provisioning link gives trimmed, undecoded pairs of known keys, and the same pairs after they are put into a link
// again.
#include "Require.h"
#include "featuresets/adapters/config/chain/UrlProvisioningData.h"

#include <kyr/StringUtils.h>

#include <cstdint>
#include <string>

using fuzz::require;
using KyrCoreUtils::trim;
using ZelUnified::parseUrlProvisioningData;

namespace {

constexpr std::size_t longestUrl = 999;
constexpr std::size_t knownKeys = 23;

} // namespace

// libFuzzer prescribes the name.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) { // NOLINT(readability-identifier-naming)
    const auto url = KyrCoreUtils::toWideString(std::string_view(reinterpret_cast<const char*>(data), size));
    const auto settings = parseUrlProvisioningData(url);
    require(settings.size() <= knownKeys);
    require(settings.empty() || (url.size() <= longestUrl && url.find(L'?') != std::wstring::npos));
    std::wstring again = L"?";
    for (const auto& [key, value] : settings) {
        require(!key.empty() && key == trim(std::wstring_view(key)) && value == trim(std::wstring_view(value)));
        require(value.find_first_of(L"&=") == std::wstring::npos);
        require(url.find(key) != std::wstring::npos && url.find(value) != std::wstring::npos);
        again.append(key).append(L"=").append(value).append(L"&");
    }
    require(again.size() <= url.size() + 2);
    require(again.size() > longestUrl || parseUrlProvisioningData(again) == settings);
    return 0;
}
