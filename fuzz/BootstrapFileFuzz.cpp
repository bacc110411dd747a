// The table of a bootstrap file is trimmed, contains each of its keys, and is unchanged after it is written with one
// line per key and read again.
#include "Require.h"

#include <kyr/StringUtils.h>

#include <BootstrapConfigStore.h>
#include <ConfigMap.h>
#include <TemporaryProfile.h>

#include <cstdint>
#include <string>

using fuzz::require;
using KyrCoreUtils::trim;
using ZelUnified::BootstrapConfigStore;
using ZelUnified::ConfigMap;

namespace {

ConfigMap read(const std::string& bytes) {
    static const testing_host::TemporaryProfile profile;
    static const std::string path = (profile.root() / "bootstrap.properties").string();
    testing_host::writeFile(path, bytes);
    BootstrapConfigStore store("BootstrapConfigStore", path, 50);
    ConfigMap values;
    for (const auto& key : store.getKeys()) {
        std::wstring value;
        require(store.getValue(key, value));
        require(key == trim(std::wstring_view(key)) && value == trim(std::wstring_view(value)));
        require(key.find_first_of(L":\n") == std::wstring::npos && value.find(L'\n') == std::wstring::npos);
        values.emplace(key, value);
    }
    return values;
}

} // namespace

// libFuzzer prescribes the name.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) { // NOLINT(readability-identifier-naming)
    const ConfigMap values = read(std::string(reinterpret_cast<const char*>(data), size));
    // The comment occupies the position where a byte order mark would be removed.
    std::string written = "# written again\n";
    for (const auto& [key, value] : values) {
        written += KyrCoreUtils::toString(key) + ":" + KyrCoreUtils::toString(value) + "\r\n";
    }
    require(read(written) == values);
    return 0;
}
