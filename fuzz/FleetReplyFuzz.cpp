// Each reply of a cluster is refused or gives pairs, and each pair is skipped or becomes a setting that a document can
// hold.
#include "EtcdMessages.h"
#include "FleetTable.h"
#include "Require.h"

#include <kyr/StringUtils.h>

#include <cstdint>
#include <string_view>

using fuzz::require;
namespace etcd = fleet::etcd;

namespace {

void apply(const std::vector<etcd::Pair>& pairs) {
    fleet::FleetTable table({fleet::FleetScope::ofAll(), fleet::FleetScope::ofUser("ada")});
    for (const auto& pair : pairs) {
        table.apply(pair);
    }
    const auto settings = table.merge();
    require(settings.size() <= pairs.size());
    for (const auto& [key, value] : settings) {
        require(fleet::FleetTable::findPairProblem(KyrCoreUtils::toString(key), KyrCoreUtils::toString(value)).empty());
    }
}

void handle(std::string_view text) {
    if (const auto snapshot = etcd::parseSnapshot(text)) {
        apply(snapshot->pairs);
    }
    if (const auto reply = etcd::parseWatchReply(text)) {
        apply(reply->changes);
    }
    etcd::parseToken(text);
    etcd::parseDeletedCount(text);
    etcd::parseFailure(text);
}

} // namespace

// libFuzzer prescribes the name.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) { // NOLINT(readability-identifier-naming)
    handle({reinterpret_cast<const char*>(data), size});
    return 0;
}
